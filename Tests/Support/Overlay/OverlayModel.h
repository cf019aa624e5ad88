#pragma once

#include "Tests/Support/Overlay/Look.h"
#include "Tests/Support/Overlay/TextModel.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// A selection that is done and stays visible, in screen pixels.
struct OverlayMark
{
    Area area;
    std::uint32_t colour;
};

/// What the user has done with the overlay. Positions are screen pixels.
struct OverlayState
{
    Position cursor;
    int zoom = 4;
    std::optional<Position> anchor; ///< where a selection under way began
    std::string message;            ///< none if empty
    bool hasCrosshair = true;       ///< false to look below it

    // What a configuration adds.
    bool showsSize = false;
    bool isBright = false;
    bool hasContrast = false;
    std::vector<OverlayMark> marks;
    std::string label; ///< none if empty
    std::uint32_t labelColour = 0xFFFFFFFFU;
    std::string hints; ///< none if empty
};

/// How the overlay should look on a display that begins at 0, 0, painted only by the rules.
class OverlayModel
{
public:
    /// `picture` is the picture that is snipped; the caller owns it. Throws `std::runtime_error` for one whose edges
    /// would be shown inside of screen pixels, or whose last block isn't whole.
    OverlayModel(int width, int height, const Picture& picture);

    [[nodiscard]] Look MakeLook(const OverlayState& state) const;

    /// The side of the magnifier.
    [[nodiscard]] int GetSide() const { return m_side; }
    /// The space between the cursor and the magnifier.
    [[nodiscard]] int GetMargin() const { return m_margin; }
    [[nodiscard]] int GetZoomLimit() const { return m_side / m_shrink; }
    /// The magnifier, and what is on it and close to it, cut at the screen's edge.
    [[nodiscard]] Area GetMagnifierArea(Position cursor) const;
    /// How much of a polygon's line is hidden there by the white of the crosshair; 1 by the magnifier.
    [[nodiscard]] double GetCoverOfPolygon(Position cursor, int x, int y) const;
    /// Where a message is, from one side of the screen to the other.
    [[nodiscard]] Area GetMessageArea() const;

private:
    [[nodiscard]] Position PlaceMagnifier(Position cursor) const;
    /// The font size of messages, pixels.
    [[nodiscard]] int GetMessageSize() const;
    [[nodiscard]] std::uint32_t GetBlock(int left, int top, double brightness) const;
    void PaintMagnifier(Look& look, const OverlayState& state) const;
    void PaintLines(Look& look, const OverlayState& state) const;
    void PaintTexts(Look& look, const OverlayState& state) const;
    void PaintBright(Look& look, const OverlayState& state) const;
    void PaintSize(Look& look, const OverlayState& state) const;
    void PaintHints(Look& look, const OverlayState& state) const;
    /// At a place on the screen, y downward, with a dark edge if there is contrast.
    void PaintText(Look& look, const OverlayState& state, const std::string& text, double x, double baseline,
                   double scale, std::uint32_t colour = 0xFFFFFFFFU) const;
    /// The size of the texts at the magnifier, pixels.
    [[nodiscard]] double GetLetterHeight() const { return std::max(m_margin * 3 / 4, 16); }

    int m_width;
    int m_height;
    const Picture& m_picture;
    int m_shrink = 1; ///< the picture's pixels to one of the screen
    Area m_area;
    int m_side = 32;
    int m_margin = 16;
    TextModel m_text;
    Look m_background; ///< only the picture
};

} // namespace Orvik::Tests
