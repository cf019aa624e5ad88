#pragma once

#include <filesystem>
#include <functional>
#include <rapidjson/document.h>
#include <string>
#include <utility>
#include <vector>

namespace Orvik::Data
{

/// Takes one object of a list. What is wrong with it, or nothing.
using TakeJsonObject = std::function<std::string(const rapidjson::Value& object)>;

/// Reads a large file, a JSON object, for the lists that stand right in it under these names, and hands on the objects
/// in them one by one: one alone is in memory at a time. All else is passed over. What is wrong with the file, or
/// nothing; what was handed on before stays.
[[nodiscard]] std::string ReadJsonLists(const std::filesystem::path& path,
                                        const std::vector<std::pair<std::string, TakeJsonObject>>& lists);

} // namespace Orvik::Data
