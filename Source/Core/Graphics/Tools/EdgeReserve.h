#pragma once

#include "Core/Graphics/Tools/SnipGeometry.h"

namespace Orvik::Graphics::Tools
{

/// Lets the cursor go one pixel further than the pointer. Where the cursor reaches the last column or row of the
/// display, the pointer is kept one pixel before it: a push on against the edge is then a motion, which would be none
/// at the edge itself. Away from it both are at the same place again. All places are window pixels.
class EdgeReserve
{
public:
    void Begin(System::Math::Point pointer);

    /// Where the cursor is now that the pointer is there. After a leap away from the edge it is the pointer's place: a
    /// device that says places says them without regard to ours.
    [[nodiscard]] System::Math::Point ToCursor(System::Math::Point pointer, Size window);

    [[nodiscard]] System::Math::Point ToPointer(System::Math::Point cursor) const
    {
        return {cursor.x - m_reserve.x, cursor.y - m_reserve.y};
    }

    /// To be called with each new place of the cursor. Whether the pointer has to be moved to that of `ToPointer`.
    [[nodiscard]] bool Follow(System::Math::Point cursor, Size window);

private:
    System::Math::Point m_pointer; ///< where it was last
    System::Math::Point m_reserve; ///< 0 or 1 in each direction
};

} // namespace Orvik::Graphics::Tools
