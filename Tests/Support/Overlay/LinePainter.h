#pragma once

#include "Tests/Support/Overlay/Look.h"

#include <vector>

namespace Orvik::Tests
{

/// Paints the overlay's lines, all one pixel thick, the nearest first: a line hides those behind it, even where it is
/// faint itself.
class LinePainter
{
public:
    explicit LinePainter(Look& look);

    /// One pixel outside of the selection; at the left edge of the screen, inside of it.
    void PaintOutline(const Area& selection);
    /// Beside the cursor, so that the cursor's own pixel stays free. The lines fade from left to right and from the
    /// bottom to the top.
    void PaintCrosshair(Position cursor);
    /// Through the magnifier's middle.
    void PaintCross(const Area& magnifier);

private:
    void Paint(int x, int y, std::uint32_t colour, double opacity);

    Look& m_look;
    std::vector<bool> m_isTaken;
};

} // namespace Orvik::Tests
