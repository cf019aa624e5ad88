#pragma once

#include <filesystem>

namespace Orvik::Tests
{

/// The running test program's file.
[[nodiscard]] std::filesystem::path GetOwnProgram();

} // namespace Orvik::Tests
