#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <string>
#include <vector>

namespace Orvik::Tests
{

/// Moves the windows in which a compositor on an X server shows its outputs to their places on the X server's screen,
/// in the order in which they were made, once all are there and of those sizes. False as long as they aren't.
[[nodiscard]] bool PlaceOutputWindows(const std::string& displayName, const std::vector<Area>& places);

/// Gives the X server the names by which windows are asked to close. Compositors look for them when they start, and
/// don't make them themselves.
void NameClosing(const std::string& displayName);

/// Asks such a window to close, as a window manager does: the compositor takes the output away. `index` counts the
/// windows from 0.
void CloseOutputWindow(const std::string& displayName, std::size_t index);

} // namespace Orvik::Tests
