#include "Data/Records/Folder.h"

#include "Core/System/Text/Paths.h"

#include <algorithm>
#include <system_error>

namespace Orvik::Data
{
namespace
{

std::string GetLowerExtension(const std::filesystem::path& path)
{
    std::string extension = System::Text::PathToUtf8(path.extension());
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char letter)
                   { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; });
    return extension;
}

} // namespace

FileList ListFiles(const std::filesystem::path& folder, const std::vector<std::string>& extensions)
{
    FileList list;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
    {
        std::error_code ignored;
        const std::string extension = GetLowerExtension(entry->path());
        const bool isWanted = std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
        if (isWanted && entry->is_regular_file(ignored))
            list.files.push_back(entry->path());
    }
    if (error)
        list.error = "the folder can't be read";
    std::sort(list.files.begin(), list.files.end());
    return list;
}

} // namespace Orvik::Data
