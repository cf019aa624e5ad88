#pragma once

#include "Tests/Support/Overlay/Look.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// The overlay's font at its full size, 96 pixels, directly from FreeType, and strings written with it.
class TextModel
{
public:
    /// Throws `std::runtime_error` if there is no such font. The path is relative to the repository.
    explicit TextModel(const std::string& fontFile = "Resources/UI/Textures/Mulish-Regular.ttf");

    /// How far the pen moves on the last line, in pixels of the full size.
    [[nodiscard]] int GetWidth(const std::string& text) const;

    /// Writes text over the screen. The first line begins at `x` and is on `baseline`, in screen pixels, y
    /// downward; `scale` is its part of the full size. Every pixel gets the average of the glyph over its square.
    void Draw(Look& look, const std::string& text, double x, double baseline, double scale,
              std::uint32_t colour = 0xFFFFFFFFU) const;

private:
    struct Glyph
    {
        int left = 0;
        int top = 0;
        int width = 0;
        int rows = 0;
        int advance = 0;
        std::vector<std::uint8_t> coverage;

        /// The average over a part of its bitmap; outside of the bitmap it is 0.
        [[nodiscard]] double GetAverage(double fromX, double fromY, double toX, double toY) const;
    };

    static void DrawGlyph(Look& look, const Glyph& glyph, double left, double top, double scale, std::uint32_t colour);

    std::map<char, Glyph> m_glyphs;
};

} // namespace Orvik::Tests
