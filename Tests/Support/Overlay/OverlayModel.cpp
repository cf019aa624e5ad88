#include "Tests/Support/Overlay/OverlayModel.h"

#include "Tests/Support/Overlay/LinePainter.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Orvik::Tests
{
namespace
{

constexpr std::uint32_t s_black = 0xFF000000U;
constexpr double s_pictureBrightness = 0.5;
constexpr double s_magnifierBrightness = 0.75;
constexpr double s_fontSize = 96.0;

} // namespace

OverlayModel::OverlayModel(int width, int height, const Picture& picture)
    : m_width(width), m_height(height), m_picture(picture), m_background(width, height, s_black)
{
    while (picture.width > width * m_shrink || picture.height > height * m_shrink)
        m_shrink *= 2;
    m_area = {0, 0, picture.width / m_shrink, picture.height / m_shrink};
    m_area.x = (width - m_area.width) / 2;
    m_area.y = (height - m_area.height) / 2;
    if (m_area.width * m_shrink != picture.width || m_area.height * m_shrink != picture.height ||
        m_area.x * 2 != width - m_area.width || m_area.y * 2 != height - m_area.height)
        throw std::runtime_error("The model knows pictures on whole pixels only.");

    while (m_side < height / 8)
        m_side *= 2;
    m_margin = 16 * std::max(m_side / 128, 1);
    for (int y = 0; y < m_area.height; ++y)
        for (int x = 0; x < m_area.width; ++x)
            m_background.At(m_area.x + x, m_area.y + y) = GetBlock(x * m_shrink, y * m_shrink, s_pictureBrightness);
}

Look OverlayModel::MakeLook(const OverlayState& state) const
{
    Look look = m_background;
    PaintBright(look, state);
    PaintMagnifier(look, state);
    PaintLines(look, state);
    PaintTexts(look, state);
    return look;
}

Area OverlayModel::GetMagnifierArea(Position cursor) const
{
    const Position place = PlaceMagnifier(cursor);
    const int left = std::max(place.x - m_margin, 0);
    const int top = std::max(place.y - 2 * m_margin, 0);
    return {left, top, std::min(place.x + m_side + m_margin, m_width) - left,
            std::min(place.y + m_side + m_margin, m_height) - top};
}

// The crosshair is made after the outline, and nearer than a polygon's: it goes over that, faint as it is.
double OverlayModel::GetCoverOfPolygon(Position cursor, int x, int y) const
{
    const Position place = PlaceMagnifier(cursor);
    if (x >= place.x && x < place.x + m_side && y >= place.y && y < place.y + m_side)
        return 1.0;
    if (y == cursor.y + 1)
        return LinePainter::GetCrosshairOpacity(x, m_width);
    return x == cursor.x + 1 ? LinePainter::GetCrosshairOpacity(m_height - 1 - y, m_height) : 0.0;
}

Area OverlayModel::GetMessageArea() const
{
    const int baseline = m_height * 85 / 100;
    return {0, baseline - 2 * GetMessageSize(), m_width, 3 * GetMessageSize()};
}

// Right of and below the cursor; on the other side where that would go beyond the screen, downward with a margin.
Position OverlayModel::PlaceMagnifier(Position cursor) const
{
    Position place{cursor.x + m_margin, cursor.y + m_margin};
    if (place.x + m_side > m_width)
        place.x = std::max(cursor.x - m_margin - m_side, 0);
    if (place.y + m_side + m_margin > m_height)
        place.y = std::max(cursor.y - m_margin - m_side, 0);
    return place;
}

int OverlayModel::GetMessageSize() const
{
    return static_cast<int>(std::max(m_height / 1080.0, 1.0) * 24.0);
}

/// From the corner where it began to the cursor; none if it hasn't begun.
std::optional<Area> GetSelection(const OverlayState& state)
{
    if (!state.anchor)
        return std::nullopt;
    const Position anchor = *state.anchor;
    const Position cursor = state.cursor;
    return Area{std::min(anchor.x, cursor.x), std::min(anchor.y, cursor.y), std::abs(anchor.x - cursor.x),
                std::abs(anchor.y - cursor.y)};
}

/// The picture's pixels that share a pixel of the screen, averaged and dimmed. Black around the picture.
std::uint32_t OverlayModel::GetBlock(int left, int top, double brightness) const
{
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    for (int y = std::max(top, 0); y < std::min(top + m_shrink, m_picture.height); ++y)
        for (int x = std::max(left, 0); x < std::min(left + m_shrink, m_picture.width); ++x)
        {
            const std::uint32_t pixel =
                m_picture.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_picture.width) +
                                 static_cast<std::size_t>(x)];
            red += pixel >> 16 & 0xFF;
            green += pixel >> 8 & 0xFF;
            blue += pixel & 0xFF;
        }
    const double factor = brightness / (m_shrink * m_shrink);
    const auto round = [factor](double sum) { return static_cast<std::uint32_t>(std::lround(sum * factor)); };
    return 0xFF000000U | round(red) << 16 | round(green) << 8 | round(blue);
}

void OverlayModel::PaintMagnifier(Look& look, const OverlayState& state) const
{
    // The pixel under the cursor has its top left corner in the magnifier's middle.
    const Position place = PlaceMagnifier(state.cursor);
    const int region = m_side / state.zoom;
    const int left = (state.cursor.x - m_area.x) * m_shrink - region / 2;
    const int top = (state.cursor.y - m_area.y) * m_shrink - region / 2;
    const int square = state.zoom * m_shrink;
    for (int y = 0; y < m_side; ++y)
        for (int x = 0; x < m_side; ++x)
            if (look.IsInside(place.x + x, place.y + y))
                look.At(place.x + x, place.y + y) =
                    GetBlock(left + x / square * m_shrink, top + y / square * m_shrink, s_magnifierBrightness);
}

void OverlayModel::PaintLines(Look& look, const OverlayState& state) const
{
    LinePainter painter(look);
    const Position cursor = state.cursor;
    const std::optional<Area> selection = GetSelection(state);
    if (selection)
        painter.PaintOutline(*selection);
    if (selection && state.hasContrast)
        painter.PaintOutlineEdge(*selection);
    if (state.hasCrosshair)
        painter.PaintCrosshair(cursor);
    if (state.hasContrast)
        painter.PaintCrosshairEdge(cursor);
    const Position place = PlaceMagnifier(cursor);
    painter.PaintCross({place.x, place.y, m_side, m_side});
    painter.Cover({place.x, place.y, m_side, m_side});
    for (const OverlayMark& mark : state.marks)
        painter.PaintOutline(mark.area, mark.colour);
    if (state.hasContrast && (m_area.width < m_width || m_area.height < m_height))
        painter.PaintFrame(m_area);
}

void OverlayModel::PaintBright(Look& look, const OverlayState& state) const
{
    const std::optional<Area> selection = GetSelection(state);
    if (!selection || !state.isBright)
        return;
    for (int y = selection->y; y < selection->y + selection->height; ++y)
        for (int x = selection->x; x < selection->x + selection->width; ++x)
            look.At(x, y) = GetBlock((x - m_area.x) * m_shrink, (y - m_area.y) * m_shrink, 1.0);
}

void OverlayModel::PaintText(Look& look, const OverlayState& state, const std::string& text, double x, double baseline,
                             double scale, std::uint32_t colour) const
{
    for (const double offsetX : {-1.0, 1.0})
        for (const double offsetY : {-1.0, 1.0})
            if (state.hasContrast)
                m_text.Draw(look, text, x + offsetX, baseline + offsetY, scale, s_black);
    m_text.Draw(look, text, x, baseline, scale, colour);
}

// Above the selection, below it where there is no room, or inside.
void OverlayModel::PaintSize(Look& look, const OverlayState& state) const
{
    const std::optional<Area> selection = GetSelection(state);
    if (!selection || !state.showsSize)
        return;
    constexpr double gap = 4.0;
    const double letter = GetLetterHeight();
    const double scale = letter / s_fontSize;
    const double below = letter / 4.0;
    double baseline = selection->y - gap - below;
    if (baseline < letter)
        baseline = selection->y + selection->height + gap + letter;
    if (baseline + below > m_height)
        baseline = selection->y + gap + letter;
    const std::string size =
        std::to_string(selection->width * m_shrink) + " x " + std::to_string(selection->height * m_shrink);
    const double rightmost = m_width - m_text.GetWidth(size) * scale;
    PaintText(look, state, size, std::clamp<double>(selection->x, 0.0, rightmost), baseline, scale);
}

void OverlayModel::PaintHints(Look& look, const OverlayState& state) const
{
    constexpr double size = 20.0;
    const double height = std::max(m_height / 1080.0, 1.0) * size;
    const int width = std::max(m_text.GetWidth(state.hints), 1);
    const double scale = std::min(std::floor(height) / s_fontSize, m_width * 0.98 / width);
    PaintText(look, state, state.hints, (m_width - width * scale) / 2.0, m_height - height / 2.0, scale);
}

void OverlayModel::PaintTexts(Look& look, const OverlayState& state) const
{
    const Position magnifier = PlaceMagnifier(state.cursor);
    const double scale = GetLetterHeight() / s_fontSize;
    const std::string place =
        std::to_string(state.cursor.x - m_area.x) + ", " + std::to_string(state.cursor.y - m_area.y);
    PaintText(look, state, place, magnifier.x, magnifier.y, scale);
    const std::string zoom = "x" + std::to_string(state.zoom);
    PaintText(look, state, zoom, magnifier.x + m_side - m_text.GetWidth(zoom) * scale, magnifier.y, scale);
    PaintText(look, state, state.label, magnifier.x, magnifier.y + m_side + GetLetterHeight(), scale,
              state.labelColour);
    PaintSize(look, state);
    PaintHints(look, state);

    const double messageScale = GetMessageSize() / s_fontSize;
    const double left = m_width * 0.5 - m_text.GetWidth(state.message) * messageScale * 0.5;
    PaintText(look, state, state.message, left, m_height * 0.85, messageScale);
}

} // namespace Orvik::Tests
