#pragma once

#include <filesystem>
#include <string>

namespace Orvik::Tests
{

/// Has the sway whose socket is in that folder carry a command out, and waits until it has, for a minute at most:
/// sway's own tool gives up after three seconds, which a busy machine may take. False if it doesn't answer or refuses.
[[nodiscard]] bool CommandSway(const std::filesystem::path& runtime, const std::string& command);

} // namespace Orvik::Tests
