#include "Tests/Support/Overlay/LinePainter.h"

#include <algorithm>
#include <cmath>

namespace Orvik::Tests
{
namespace
{

constexpr std::uint32_t s_white = 0xFFFFFFFFU;
constexpr std::uint32_t s_dark = 0xFF000000U;
constexpr std::uint32_t s_frame = 0xFF808080U;
constexpr double s_fading = 0.6;

} // namespace

LinePainter::LinePainter(Look& look) : m_look(look), m_isTaken(look.picture.pixels.size(), false)
{
}

void LinePainter::PaintOutline(const Area& selection, std::uint32_t colour)
{
    const int left = std::max(selection.x - 1, 0);
    const int bottom = std::min(selection.y + selection.height, m_look.picture.height - 1);
    PaintBox(left, bottom - selection.height - 1, left + selection.width + 1, bottom, colour);
}

void LinePainter::PaintOutlineEdge(const Area& selection)
{
    const int left = std::max(selection.x - 1, 0);
    const int bottom = std::min(selection.y + selection.height, m_look.picture.height - 1);
    PaintBox(left - 1, bottom - selection.height - 2, left + selection.width + 2, bottom + 1, s_dark);
}

void LinePainter::PaintFrame(const Area& picture)
{
    PaintBox(picture.x - 1, picture.y - 1, picture.x + picture.width, picture.y + picture.height, s_frame);
}

void LinePainter::Cover(const Area& area)
{
    for (int y = area.y; y < area.y + area.height; ++y)
        for (int x = area.x; x < area.x + area.width; ++x)
            if (m_look.IsInside(x, y))
                m_isTaken[m_look.GetIndex(x, y)] = true;
}

void LinePainter::PaintCrosshair(Position cursor)
{
    PaintFading(cursor, 1, s_white);
}

double LinePainter::GetCrosshairOpacity(int place, int length)
{
    return 1.0 - s_fading * (place + 0.5) / length;
}

void LinePainter::PaintCrosshairEdge(Position cursor)
{
    PaintFading(cursor, 2, s_dark);
}

void LinePainter::PaintBox(int left, int top, int right, int bottom, std::uint32_t colour)
{
    for (int x = left; x <= right; ++x)
    {
        Paint(x, top, colour, 1.0);
        Paint(x, bottom, colour, 1.0);
    }
    for (int y = top; y <= bottom; ++y)
    {
        Paint(left, y, colour, 1.0);
        Paint(right, y, colour, 1.0);
    }
}

void LinePainter::PaintFading(Position cursor, int distance, std::uint32_t colour)
{
    const int width = m_look.picture.width;
    const int height = m_look.picture.height;
    for (int x = 0; x < width; ++x)
        Paint(x, cursor.y + distance, colour, GetCrosshairOpacity(x, width));
    for (int y = 0; y < height; ++y)
        Paint(cursor.x + distance, y, colour, GetCrosshairOpacity(height - 1 - y, height));
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
