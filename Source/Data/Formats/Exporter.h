#pragma once

#include "Data/Formats/Split.h"
#include "Data/Records/ClassList.h"
#include "Data/Records/Record.h"
#include "Data/Run/OutputFiles.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Orvik::Data
{

/// A picture on its way out.
struct ExportedPicture
{
    Record record;
    std::filesystem::path source;
    std::string name;                 ///< of the file in the data set
    std::vector<std::size_t> classes; ///< of each annotation: its label's number
    std::optional<Subset> subset;     ///< nothing without a split
};

/// What a data set is written with.
struct ExportTarget
{
    std::filesystem::path folder;
    const ClassList& classes;
    const OutputFiles& output;
    bool isSplit = false;
    bool mayReplace = false;
};

/// One format of data sets. Each operation answers what is wrong, or nothing.
class Exporter
{
public:
    Exporter() = default;
    virtual ~Exporter() = default;
    Exporter(const Exporter&) = delete;
    Exporter& operator=(const Exporter&) = delete;

    /// Makes the folders. Refuses if a file that is for the whole set is there and may not be replaced.
    [[nodiscard]] virtual std::string Begin() = 0;

    /// Writes the picture and the files of its own. On any thread.
    [[nodiscard]] virtual std::string WriteFiles(const ExportedPicture& picture) const = 0;

    /// Enters a picture, whose own files are there, in the files of the whole set. On one thread, in order.
    [[nodiscard]] virtual std::string Add(const ExportedPicture& picture) = 0;

    /// Puts the files of the whole set in place.
    [[nodiscard]] virtual std::string Finish() = 0;
};

[[nodiscard]] std::unique_ptr<Exporter> MakeCocoExporter(const ExportTarget& target);
[[nodiscard]] std::unique_ptr<Exporter> MakeYoloExporter(const ExportTarget& target);
/// With `isZeroBased`, numbers are edges, counted from 0; else pixels that belong to the box, counted from 1.
[[nodiscard]] std::unique_ptr<Exporter> MakeVocExporter(const ExportTarget& target, bool isZeroBased);

} // namespace Orvik::Data
