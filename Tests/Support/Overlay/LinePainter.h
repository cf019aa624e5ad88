#pragma once

#include "Tests/Support/Overlay/Look.h"

#include <cstdint>
#include <vector>

namespace Orvik::Tests
{

/// Paints the overlay's lines, all one pixel thick, the nearest first: a line hides those behind it, even where it is
/// faint itself.
class LinePainter
{
public:
    explicit LinePainter(Look& look);

    /// One pixel outside of the selection; at the left edge of the screen, inside of it. Red 141, green 65, blue 184
    /// unless the caller asks for another.
    void PaintOutline(const Area& selection, std::uint32_t colour = 0xFF8D41B8U);
    /// A dark line around that outline.
    void PaintOutlineEdge(const Area& selection);
    /// Beside the cursor, so that the cursor's own pixel stays free. The lines fade from left to right and from the
    /// bottom to the top.
    void PaintCrosshair(Position cursor);
    /// The crosshair's opacity so many pixels from where a line of that length begins.
    [[nodiscard]] static double GetCrosshairOpacity(int place, int length);
    /// Dark lines on the far side of the crosshair's.
    void PaintCrosshairEdge(Position cursor);
    /// Around a picture that is smaller than the screen.
    void PaintFrame(const Area& picture);
    /// Hides what comes later there.
    void Cover(const Area& area);
    /// Through the magnifier's middle.
    void PaintCross(const Area& magnifier);

private:
    /// The edges of the area from its first to its last pixel.
    void PaintBox(int left, int top, int right, int bottom, std::uint32_t colour);
    /// A row and a column so many pixels from the cursor.
    void PaintFading(Position cursor, int distance, std::uint32_t colour);
    void Paint(int x, int y, std::uint32_t colour, double opacity);

    Look& m_look;
    std::vector<bool> m_isTaken;
};

} // namespace Orvik::Tests
