#pragma once

#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/Desktop/InputDriver.h"
#include "Tests/Support/Desktop/OverlayWatcher.h"

#include <string>

// What a person does at the overlay: each step waits until the crosshair shows what came of it, and throws
// `std::runtime_error` if it doesn't.

namespace Orvik::Tests
{

/// Waits for the first frame of a program that was started.
void AwaitOverlay(ChildProcess& process, const OverlayWatcher& overlay, Position cursor);

/// Moves the mouse. `cursor` differs from `position` where the crosshair can't follow all the way.
void MoveMouse(InputDriver& input, const OverlayWatcher& overlay, Position position, Position cursor);

/// Taps an arrow key that moves the cursor by one pixel.
void TapArrowKey(InputDriver& input, const OverlayWatcher& overlay, const std::string& name, Position cursor);

} // namespace Orvik::Tests
