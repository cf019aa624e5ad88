#pragma once

#include "Data/Records/Record.h"
#include "Data/Run/Arguments.h"
#include "Data/Run/Ordered.h"
#include "Data/Run/Progress.h"
#include "Data/Run/Report.h"

#include <exception>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Orvik::Data
{

/// What is wrong with a file.
struct Finding
{
    std::filesystem::path file;
    std::string message;
};

using Findings = std::vector<Finding>;

/// A JSON file that was read, and the picture beside it.
struct RecordFile
{
    std::filesystem::path json;
    std::filesystem::path picture; ///< empty if there is none
    Record record;
};

/// The JSON files of some folders. One that can't be read fails the report.
[[nodiscard]] std::vector<std::filesystem::path> ListRecordFiles(const std::vector<std::string>& folders,
                                                                 Report& report);

/// Reads one. Nothing, with findings, if it is broken, if its picture is missing, or if that has another size.
[[nodiscard]] std::optional<RecordFile> ReadRecordFile(const std::filesystem::path& json, Findings& findings);

/// A bar on standard error, where that is a terminal.
[[nodiscard]] Progress MakeProgress(std::string_view title, std::size_t total);

/// Does `work` for each number below `count` on all processors, in no order, and hands what it answers to `consume` in
/// their order, on the calling thread. Findings are reported in that order too. What `work` throws becomes a finding of
/// the file that `name` gives.
template <typename Result>
void RunParts(std::string_view title, std::size_t count,
              const std::function<std::filesystem::path(std::size_t index)>& name,
              const std::function<Result(std::size_t index, Findings& findings)>& work,
              const std::function<void(std::size_t index, Result result)>& consume, Report& report)
{
    struct Part
    {
        Findings findings;
        std::optional<Result> result;
    };
    Progress progress = MakeProgress(title, count);
    const auto doPart = [&](std::size_t index)
    {
        Part part;
        try
        {
            part.result = work(index, part.findings);
        }
        catch (const std::exception& failure)
        {
            part.findings.push_back({name(index), std::string("skipped: ") + failure.what()});
        }
        return part;
    };
    const auto take = [&](std::size_t index, Part part)
    {
        if (!part.findings.empty())
            progress.Clear();
        for (const Finding& finding : part.findings)
            report.AddFinding(finding.file, finding.message);
        if (part.result)
            consume(index, std::move(*part.result));
        progress.Step();
    };
    OrderedWork<Part>::Run(count, doPart, take);
}

/// The same for each of these JSON files that can be read: `work` gets them.
template <typename Result>
void RunRecords(std::string_view title, const std::vector<std::filesystem::path>& files,
                const std::function<Result(const RecordFile& file, Findings& findings)>& work,
                const std::function<void(Result result)>& consume, Report& report)
{
    RunParts<std::optional<Result>>(
        title, files.size(), [&files](std::size_t index) { return files[index]; },
        [&](std::size_t index, Findings& findings) -> std::optional<Result>
        {
            const std::optional<RecordFile> file = ReadRecordFile(files[index], findings);
            return file ? std::optional<Result>(work(*file, findings)) : std::nullopt;
        },
        [&consume](std::size_t /*index*/, std::optional<Result> result)
        {
            if (result)
                consume(std::move(*result));
        },
        report);
}

/// What `work` does with one file for the folder that the results go to, and how many it has written there.
using FolderWork =
    std::function<std::int64_t(const RecordFile& file, const std::filesystem::path& folder, Findings& findings)>;

/// Does `work` for each JSON file of all operands but the last one, which is the folder for the results. Reports the
/// number of files, and under `figure` what was written in all.
void RunIntoFolder(std::string_view verb, const Arguments& arguments, const FolderWork& work, std::string_view figure,
                   std::string_view title, Report& report);

} // namespace Orvik::Data
