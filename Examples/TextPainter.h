#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>

namespace Orvik::Examples
{

/// Writes text into pictures with the font of a file. Printable ASCII.
class TextPainter
{
public:
    /// Throws `std::runtime_error` if there is no such font.
    explicit TextPainter(const std::filesystem::path& fontFile);
    ~TextPainter();
    TextPainter(const TextPainter&) = delete;
    TextPainter& operator=(const TextPainter&) = delete;

    /// Writes from `start` on, which lies on the base line. `size` is the font's, in pixels.
    void Write(Tests::Picture& picture, Tests::Position start, int size, std::uint32_t colour, std::string_view text);

private:
    struct Font;

    std::unique_ptr<Font> m_font;
};

} // namespace Orvik::Examples
