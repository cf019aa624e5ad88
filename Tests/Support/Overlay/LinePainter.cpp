#include "Tests/Support/Overlay/LinePainter.h"

#include <algorithm>
#include <cmath>

namespace Orvik::Tests
{
namespace
{

constexpr std::uint32_t s_white = 0xFFFFFFFFU;
constexpr std::uint32_t s_selection = 0xFF8D41B8U; ///< red 141, green 65, blue 184
constexpr double s_fading = 0.6;

} // namespace

LinePainter::LinePainter(Look& look) : m_look(look), m_isTaken(look.picture.pixels.size(), false)
{
}

void LinePainter::PaintOutline(const Area& selection)
{
    const int left = std::max(selection.x - 1, 0);
    const int right = left + selection.width + 1;
    const int bottom = std::min(selection.y + selection.height, m_look.picture.height - 1);
    const int top = bottom - selection.height - 1;
    for (int x = left; x <= right; ++x)
    {
        Paint(x, top, s_selection, 1.0);
        Paint(x, bottom, s_selection, 1.0);
    }
    for (int y = top; y <= bottom; ++y)
    {
        Paint(left, y, s_selection, 1.0);
        Paint(right, y, s_selection, 1.0);
    }
}

void LinePainter::PaintCrosshair(Position cursor)
{
    const int width = m_look.picture.width;
    const int height = m_look.picture.height;
    for (int x = 0; x < width; ++x)
        Paint(x, cursor.y + 1, s_white, 1.0 - s_fading * (x + 0.5) / width);
    for (int y = 0; y < height; ++y)
        Paint(cursor.x + 1, y, s_white, 1.0 - s_fading * (height - y - 0.5) / height);
}

void LinePainter::PaintCross(const Area& magnifier)
{
    for (int x = 0; x < magnifier.width; ++x)
        Paint(magnifier.x + x, magnifier.y + magnifier.height / 2, s_white, 1.0);
    for (int y = 0; y < magnifier.height; ++y)
        Paint(magnifier.x + magnifier.width / 2, magnifier.y + y, s_white, 1.0);
}

void LinePainter::Paint(int x, int y, std::uint32_t colour, double opacity)
{
    if (!m_look.IsInside(x, y))
        return;
    const std::size_t index = m_look.GetIndex(x, y);
    if (m_isTaken[index])
        return;
    m_isTaken[index] = true;
    m_look.Mix(x, y, colour, opacity);
}

} // namespace Orvik::Tests
