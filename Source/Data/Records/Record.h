#pragma once

#include "Core/System/Types/Point.h"
#include "Core/System/Types/Rectangle.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvik::Data
{

// What a file may hold at most. A file that goes beyond is broken: who reads one must not run out of memory or time.
inline constexpr std::size_t s_maxRecordBytes = std::size_t{16} * 1024 * 1024;
inline constexpr std::size_t s_maxAnnotations = 10'000; ///< of one picture
inline constexpr std::size_t s_maxCorners = 10'000;     ///< of one ring
inline constexpr std::size_t s_maxLabelBytes = 256;
inline constexpr std::size_t s_maxClasses = 10'000;

/// The corners of a polygon in pixels of the picture. The last one repeats the first; empty for a rectangle.
using Ring = std::vector<System::Math::Point>;

/// One region of a picture.
struct Annotation
{
    std::string id;              ///< a UUID in braces
    System::Math::Rectangle box; ///< pixels of the picture; `right` and `bottom` are the first ones outside
    std::string label;           ///< empty if there is none
    Ring ring;                   ///< within the box, and reaching its four sides

    bool operator==(const Annotation&) const = default;
};

/// What one JSON file says.
struct Record
{
    enum class Kind : std::uint8_t
    {
        Snip,        ///< the picture is one selection; its polygon, if it had one, is the ring of a single annotation
        Annotations, ///< the picture is whole, and has annotations
    };

    Kind kind = Kind::Annotations;
    std::string id;   ///< a UUID in braces
    std::string time; ///< when the picture was taken, as the file says it
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<Annotation> annotations;

    bool operator==(const Record&) const = default;
};

/// The corners for formats that close a ring themselves: without the last one, which repeats the first. A ring whose
/// last corner but one is the first too stays whole, since readers take what ends where it began for closed.
[[nodiscard]] Ring GetOpenRing(const Ring& ring);

/// The smallest box around the corners; an empty one of none.
[[nodiscard]] System::Math::Rectangle GetBounds(const Ring& ring);

} // namespace Orvik::Data
