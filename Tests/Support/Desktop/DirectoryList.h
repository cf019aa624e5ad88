#pragma once

#include <filesystem>
#include <vector>

namespace Orvik::Tests
{

/// The entries of an existing directory, in the order of their names.
[[nodiscard]] std::vector<std::filesystem::path> ListFiles(const std::filesystem::path& directory);

} // namespace Orvik::Tests
