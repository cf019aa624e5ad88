#include "Tests/Support/Overlay/Look.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace Orvik::Tests
{
namespace
{

std::string FormatPixel(std::uint32_t pixel)
{
    char text[16];
    std::snprintf(text, sizeof(text), "#%06X", pixel & 0xFFFFFFU);
    return text;
}

/// The channel that differs most.
int GetDistance(std::uint32_t left, std::uint32_t right)
{
    const int red = std::abs(static_cast<int>(left >> 16 & 0xFF) - static_cast<int>(right >> 16 & 0xFF));
    const int green = std::abs(static_cast<int>(left >> 8 & 0xFF) - static_cast<int>(right >> 8 & 0xFF));
    const int blue = std::abs(static_cast<int>(left & 0xFF) - static_cast<int>(right & 0xFF));
    return std::max({red, green, blue});
}

/// Sums up what differs.
class Differences
{
public:
    void Add(int x, int y, std::uint32_t expected, std::uint32_t actual)
    {
        if (m_count++ == 0)
            m_first = "first at " + std::to_string(x) + ", " + std::to_string(y) + ": " + FormatPixel(actual) +
                      " in place of " + FormatPixel(expected);
        m_left = std::min(m_left, x);
        m_right = std::max(m_right, x);
        m_bottom = std::max(m_bottom, y);
        m_top = std::min(m_top, y);
    }

    [[nodiscard]] std::string Describe() const
    {
        if (m_count == 0)
            return {};
        return std::to_string(m_count) + " pixels differ, between " + std::to_string(m_left) + ", " +
               std::to_string(m_top) + " and " + std::to_string(m_right) + ", " + std::to_string(m_bottom) + "; " +
               m_first + ". ";
    }

private:
    std::int64_t m_count = 0;
    std::string m_first;
    int m_left = 1 << 30;
    int m_top = 1 << 30;
    int m_right = -1;
    int m_bottom = -1;
};

} // namespace

Look::Look(int width, int height, std::uint32_t colour) : picture{width, height, {}}
{
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    picture.pixels.assign(count, colour);
    isText.assign(count, 0);
}

std::uint32_t& Look::At(int x, int y)
{
    return picture.pixels.at(GetIndex(x, y));
}

std::size_t Look::GetIndex(int x, int y) const
{
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) + static_cast<std::size_t>(x);
}

bool Look::IsInside(int x, int y) const
{
    return x >= 0 && y >= 0 && x < picture.width && y < picture.height;
}

void Look::Mix(int x, int y, std::uint32_t colour, double opacity)
{
    std::uint32_t& pixel = At(x, y);
    std::uint32_t mixed = 0xFF000000U;
    for (int shift = 0; shift < 24; shift += 8)
    {
        const double below = pixel >> shift & 0xFF;
        const double above = colour >> shift & 0xFF;
        mixed |= static_cast<std::uint32_t>(std::lround(below + (above - below) * opacity)) << shift;
    }
    pixel = mixed;
}

std::string DescribeDifference(const Look& expected, const Picture& actual, const Area& area,
                               const LookTolerance& tolerance)
{
    Differences differences;
    std::int64_t textCount = 0;
    std::int64_t textSum = 0;
    const std::uint32_t* have = actual.pixels.data();
    for (int y = area.y; y < area.y + area.height; ++y)
    {
        // Row by row: it is eight million pixels on a large screen.
        const std::size_t row = expected.GetIndex(area.x, y);
        for (int x = 0; x < area.width; ++x, ++have)
        {
            const std::size_t index = row + static_cast<std::size_t>(x);
            const int distance = GetDistance(expected.picture.pixels[index], *have);
            const bool isText = expected.isText[index] != 0;
            if (distance > (isText ? tolerance.text : tolerance.plain))
                differences.Add(area.x + x, y, expected.picture.pixels[index], *have);
            textCount += isText ? 1 : 0;
            textSum += isText ? distance : 0;
        }
    }
    const double mean = textCount == 0 ? 0.0 : static_cast<double>(textSum) / static_cast<double>(textCount);
    std::string text = differences.Describe();
    if (!text.empty() || mean > tolerance.meanText)
        text += "Text is off by " + std::to_string(mean) + " on average.";
    return text;
}

} // namespace Orvik::Tests
