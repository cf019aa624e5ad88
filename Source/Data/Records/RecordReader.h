#pragma once

#include "Data/Records/Record.h"
#include "Data/Records/RecordSchemas.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Orvik::Data
{

/// What a JSON file says, or what is wrong with it.
struct ReadRecord
{
    std::optional<Record> record;      ///< only without findings
    std::vector<std::string> findings; ///< each a line
};

/// Reads the text of a file and holds it against its schema and its own rules: what a file of the program always keeps,
/// and all the rest of this program relies on.
[[nodiscard]] ReadRecord ParseRecord(const std::string& text, const RecordSchemas& schemas);

/// The same of a file, whose name has to be the identifier in it.
[[nodiscard]] ReadRecord LoadRecord(const std::filesystem::path& path, const RecordSchemas& schemas);

/// The whole of a file, nothing if it can't be read or has more than `maxBytes`. What isn't a regular file isn't read.
[[nodiscard]] std::optional<std::string> ReadTextFile(const std::filesystem::path& path, std::size_t maxBytes);

/// The text of an annotation file, as the program writes it; with "label" and "polygon" where there are any.
[[nodiscard]] std::string MakeRecordJson(const Record& record);

} // namespace Orvik::Data
