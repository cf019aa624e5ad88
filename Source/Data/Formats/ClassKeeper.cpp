#include "Data/Formats/ClassKeeper.h"

#include "Data/Run/OutputFiles.h"

#include <fmt/format.h>
#include <utility>

namespace Orvik::Data
{

ClassKeeper::ClassKeeper(std::filesystem::path path, bool mayAdd) : m_path(std::move(path)), m_mayAdd(mayAdd)
{
}

std::string ClassKeeper::Load()
{
    m_loaded = LoadClasses(m_path);
    return m_loaded.error;
}

std::string ClassKeeper::Add(const std::vector<std::string>& names)
{
    bool isChanged = false;
    for (const std::string& name : names)
    {
        if (m_loaded.classes.Find(name))
            continue;
        if (!NeedsNames())
            return fmt::format("doesn't list the label \"{}\"; --add-classes adds it", name);
        if (!m_loaded.classes.Add(name))
            return fmt::format("\"{}\" can't be a label, or there are too many", name);
        isChanged = true;
    }
    if (!isChanged)
        return {};
    // What was there is still there, in its order.
    return OutputFiles(m_loaded.exists).SaveText(m_path, m_loaded.classes.MakeText());
}

} // namespace Orvik::Data
