#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Orvik::Data
{

/// Files in the order of their names, and why there are none.
struct FileList
{
    std::vector<std::filesystem::path> files;
    std::string error; ///< empty if the folder could be read
};

/// The regular files right in a folder whose names end in one of the extensions, capitals or not. Folders within it
/// are left out.
[[nodiscard]] FileList ListFiles(const std::filesystem::path& folder, const std::vector<std::string>& extensions);

} // namespace Orvik::Data
