#include "Tests/Support/Desktop/OverlaySteps.h"

#include <stdexcept>

namespace Orvik::Tests
{
namespace
{

void AwaitCrosshair(const OverlayWatcher& overlay, Position cursor, const std::string& cause)
{
    if (!overlay.WaitForCrosshair(cursor))
        throw std::runtime_error(cause + " doesn't bring the crosshair to " + std::to_string(cursor.x) + ", " +
                                 std::to_string(cursor.y) + ".");
}

} // namespace

void AwaitOverlay(ChildProcess& process, const OverlayWatcher& overlay, Position cursor)
{
    if (overlay.WaitForCrosshair(cursor))
        return;
    const ChildResult result = process.Wait(std::chrono::milliseconds(0));
    throw std::runtime_error("The overlay doesn't come up.\n" + result.standardOutput + result.standardError);
}

void MoveMouse(InputDriver& input, const OverlayWatcher& overlay, Position position, Position cursor)
{
    // A motion to the same place is an event too, and it would be on its way when the next step begins.
    if (input.GetPointer() != position)
        input.MoveTo(position);
    AwaitCrosshair(overlay, cursor, "The mouse");
}

void TapArrowKey(InputDriver& input, const OverlayWatcher& overlay, const std::string& name, Position cursor)
{
    input.TapKey(name);
    AwaitCrosshair(overlay, cursor, "The key " + name);
}

} // namespace Orvik::Tests
