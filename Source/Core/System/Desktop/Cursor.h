#pragma once

#include "Core/System/Types/Point.h"

namespace Orvik::System::Device::Cursor
{

/// Writes where the pointer is, in screen pixels; while a motion event is being delivered, where it was when the event
/// was made. False with a log line if the system doesn't report it; `position` is unchanged then.
bool GetCurrentPosition(Math::Point& position);

/// Moves the pointer to a position in screen pixels, through the input queue, so that the window under it gets a
/// mouse-move event. False with a log line if the system refuses.
bool SetPosition(const Math::Point& position);

/// Shows or hides the pointer's picture.
void ShowCursor(bool visible);

} // namespace Orvik::System::Device::Cursor
