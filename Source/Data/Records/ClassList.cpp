#include "Data/Records/ClassList.h"

#include "Data/Records/Names.h"
#include "Data/Records/Record.h"
#include "Data/Records/RecordReader.h"

#include <fmt/format.h>
#include <system_error>

namespace Orvik::Data
{

std::filesystem::path ClassList::GetPath(const std::filesystem::path& folder)
{
    return folder / "classes.txt";
}

bool ClassList::Add(const std::string& name)
{
    if (m_places.count(name) != 0)
        return true;
    if (!IsLabel(name) || m_names.size() >= s_maxClasses)
        return false;
    m_places.emplace(name, m_names.size());
    m_names.push_back(name);
    return true;
}

std::optional<std::size_t> ClassList::Find(std::string_view name) const
{
    const auto found = m_places.find(std::string(name));
    return found == m_places.end() ? std::nullopt : std::optional<std::size_t>(found->second);
}

std::string ClassList::MakeText() const
{
    std::string text;
    for (const std::string& name : m_names)
        text += name + "\n";
    return text;
}

LoadedClasses LoadClasses(const std::filesystem::path& path)
{
    LoadedClasses loaded;
    std::error_code error;
    loaded.exists = std::filesystem::symlink_status(path, error).type() != std::filesystem::file_type::not_found;
    if (!loaded.exists)
        return loaded;
    const std::optional<std::string> text = ReadTextFile(path, s_maxClasses * (s_maxLabelBytes + 2));
    if (!text)
    {
        loaded.error = "can't be read";
        return loaded;
    }
    std::size_t number = 1;
    for (std::size_t begin = 0; begin < text->size(); ++number)
    {
        const std::size_t end = std::min(text->find('\n', begin), text->size());
        std::string line = text->substr(begin, end - begin);
        begin = end + 1;
        if (line.ends_with('\r'))
            line.pop_back();
        if (loaded.classes.Find(line) || !loaded.classes.Add(line))
        {
            loaded.error = fmt::format("line {} is no label, or is there twice", number);
            return loaded;
        }
    }
    return loaded;
}

} // namespace Orvik::Data
