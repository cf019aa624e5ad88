#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Orvik::Data
{

// The little of YAML that a data set's description needs: names of classes by their numbers.

/// The entry "names": a map from numbers, from 0 on, to quoted texts. Ends in a line feed.
[[nodiscard]] std::string MakeYamlNames(const std::vector<std::string>& names);

/// The entry "names" of a whole file: a list or a map from 0 on, in lines or in brackets; texts plain or quoted.
/// Nothing if it isn't there, or is written in another way.
[[nodiscard]] std::optional<std::vector<std::string>> ReadYamlNames(const std::string& text);

} // namespace Orvik::Data
