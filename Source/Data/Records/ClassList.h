#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvik::Data
{

/// The labels of a data set in their order: a class's number is its place. It stands in a text file, one name a line,
/// and never changes by itself; new names go to its end.
class ClassList
{
public:
    /// The file in a folder that it stands in.
    [[nodiscard]] static std::filesystem::path GetPath(const std::filesystem::path& folder);

    /// False if the name is no label, or there are too many; true if it is there, from before or now.
    bool Add(const std::string& name);

    [[nodiscard]] std::optional<std::size_t> Find(std::string_view name) const;
    [[nodiscard]] const std::vector<std::string>& GetNames() const { return m_names; }

    [[nodiscard]] std::string MakeText() const;

private:
    std::vector<std::string> m_names;
    std::unordered_map<std::string, std::size_t> m_places;
};

/// A class list, and what is wrong with it.
struct LoadedClasses
{
    ClassList classes;
    bool exists = false;
    std::string error; ///< empty if it could be read, or isn't there
};
[[nodiscard]] LoadedClasses LoadClasses(const std::filesystem::path& path);

} // namespace Orvik::Data
