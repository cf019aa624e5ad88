#pragma once

#include <filesystem>

namespace Orvik::System::Runtime
{

/// The absolute path of the running program. Empty if the system doesn't say; the last system error is set then.
[[nodiscard]] std::filesystem::path FindExecutablePathPlatform();

} // namespace Orvik::System::Runtime
