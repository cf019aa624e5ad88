#pragma once

#include "Core/System/Text/Guid.h"
#include "Core/System/Types/Point.h"
#include "Core/System/Types/Rectangle.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Orvik::SnipBench
{

/// One rectangle of an annotation run.
struct AnnotationRecord
{
    System::GUID id;
    System::Math::Rectangle bounds;                ///< capture pixels
    std::string label = {};                        ///< UTF-8; empty if there are no labels
    std::vector<System::Math::Point> polygon = {}; ///< a closed ring in capture pixels; only with a label
};

/// The text of a snip's meta file. `polygon` is null for a rectangle.
[[nodiscard]] std::string MakeMetaJson(const System::GUID& id, std::int64_t startTime, std::uint16_t width,
                                       std::uint16_t height, const std::vector<System::Math::Point>* polygon);

/// The text of an annotation file, ASCII.
[[nodiscard]] std::string MakeAnnotationJson(const System::GUID& imageId, std::int64_t startTime, std::uint16_t width,
                                             std::uint16_t height, std::span<const AnnotationRecord> annotations);

} // namespace Orvik::SnipBench
