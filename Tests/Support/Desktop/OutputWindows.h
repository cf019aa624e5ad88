#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <string>
#include <vector>

namespace Orvik::Tests
{

/// Moves the windows in which a compositor on an X server shows its outputs to their places on the X server's screen,
/// in the order in which they were made, once all are there and of those sizes. False as long as they aren't.
[[nodiscard]] bool PlaceOutputWindows(const std::string& displayName, const std::vector<Area>& places);

} // namespace Orvik::Tests
