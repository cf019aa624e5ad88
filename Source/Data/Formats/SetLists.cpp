#include "Data/Formats/SetLists.h"

#include <algorithm>
#include <fmt/format.h>
#include <system_error>

namespace Orvik::Data
{

SetLists::SetLists(const std::filesystem::path& folder, const std::vector<List>& lists)
{
    for (const List& list : lists)
        m_entries.push_back({list.subsets, std::make_unique<StreamedFile>(folder / list.name)});
}

std::string SetLists::Begin(bool mayReplace)
{
    for (const Entry& entry : m_entries)
    {
        const std::string name = entry.file->GetPath().filename().string(); // ASCII, by the formats
        std::error_code ignored;
        if (!mayReplace && std::filesystem::exists(entry.file->GetPath(), ignored))
            return fmt::format("{} exists already; --force replaces it", name);
        if (!entry.file->Open())
            return fmt::format("{} can't be written", name);
    }
    return {};
}

std::string SetLists::Add(std::string_view line, const std::optional<Subset>& subset)
{
    bool isWritten = true;
    for (const Entry& entry : m_entries)
    {
        const std::vector<Subset>& subsets = entry.subsets;
        const bool isListed =
            subsets.empty() || (subset && std::find(subsets.begin(), subsets.end(), *subset) != subsets.end());
        if (isListed)
            isWritten = entry.file->Write(line) && entry.file->Write("\n") && isWritten;
    }
    return isWritten ? "" : "can't be written";
}

std::string SetLists::Finish(const OutputFiles& output)
{
    std::string error;
    for (const Entry& entry : m_entries)
    {
        const std::string own = entry.file->Finish(output);
        if (error.empty())
            error = own;
    }
    return error;
}

} // namespace Orvik::Data
