#pragma once

#include "Data/Formats/Exporter.h"
#include "Data/Formats/StreamedFile.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Orvik::Data
{

/// Text files that list the pictures of a data set's parts, a line each.
class SetLists
{
public:
    /// A file, and which pictures it lists; all of them if that is empty.
    struct List
    {
        const char* name;
        std::vector<Subset> subsets;
    };

    SetLists(const std::filesystem::path& folder, const std::vector<List>& lists);

    /// Makes the files. What is wrong, or nothing.
    [[nodiscard]] std::string Begin(bool mayReplace);
    [[nodiscard]] std::string Add(std::string_view line, const std::optional<Subset>& subset);
    [[nodiscard]] std::string Finish(const OutputFiles& output);

private:
    struct Entry
    {
        std::vector<Subset> subsets;
        std::unique_ptr<StreamedFile> file;
    };

    std::vector<Entry> m_entries;
};

} // namespace Orvik::Data
