#pragma once

#include "Tests/Support/Desktop/ProcessFamily.h"

#include <filesystem>

namespace Orvik::Tests
{

/// Waits until a server of the family takes connections at `file`, a minute and the family's life at the most. True if
/// it does.
[[nodiscard]] bool WaitForSocket(const std::filesystem::path& file, ProcessFamily& family);

} // namespace Orvik::Tests
