#pragma once

#include "Data/Records/ClassList.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Orvik::Data
{

/// The class list in its file. A file that isn't there is made; one that is there stays as it is, unless names may be
/// added to its end.
class ClassKeeper
{
public:
    ClassKeeper(std::filesystem::path path, bool mayAdd);

    /// What is wrong, or nothing.
    [[nodiscard]] std::string Load();

    [[nodiscard]] const std::filesystem::path& GetPath() const { return m_path; }
    [[nodiscard]] const ClassList& GetClasses() const { return m_loaded.classes; }
    /// Whether the names that are used have to be known before the first is looked up.
    [[nodiscard]] bool NeedsNames() const { return !m_loaded.exists || m_mayAdd; }

    /// Adds the names, in this order, that aren't there, and writes the file if that changes it. What is wrong, or
    /// nothing; a name that may not be added is.
    [[nodiscard]] std::string Add(const std::vector<std::string>& names);

private:
    std::filesystem::path m_path;
    bool m_mayAdd;
    LoadedClasses m_loaded;
};

} // namespace Orvik::Data
