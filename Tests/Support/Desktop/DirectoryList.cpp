#include "Tests/Support/Desktop/DirectoryList.h"

#include <algorithm>

namespace Orvik::Tests
{

std::vector<std::filesystem::path> ListFiles(const std::filesystem::path& directory)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace Orvik::Tests
