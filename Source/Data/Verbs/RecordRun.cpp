#include "Data/Verbs/RecordRun.h"

#include "Core/System/Processes/Terminal.h"
#include "Core/System/Text/Paths.h"
#include "Data/Records/Folder.h"
#include "Data/Records/PictureFile.h"
#include "Data/Records/RecordReader.h"
#include "Data/Run/OutputFiles.h"
#include "Data/Run/Pool.h"

#include <fmt/format.h>

namespace Orvik::Data
{

std::vector<std::filesystem::path> ListRecordFiles(const std::vector<std::string>& folders, Report& report)
{
    std::vector<std::filesystem::path> files;
    for (const std::string& folder : folders)
    {
        const std::filesystem::path path = System::Text::PathFromUtf8(folder);
        FileList list = ListFiles(path, {".json"});
        if (!list.error.empty())
            report.Fail(path, list.error);
        files.insert(files.end(), list.files.begin(), list.files.end());
    }
    return files;
}

std::optional<RecordFile> ReadRecordFile(const std::filesystem::path& json, Findings& findings)
{
    // Compiling the schemas costs more than most files.
    static Pool<RecordSchemas> s_schemas([] { return std::make_unique<RecordSchemas>(); });
    ReadRecord read = LoadRecord(json, *s_schemas.Borrow().Get());
    for (std::string& finding : read.findings)
        findings.push_back({json, std::move(finding)});
    if (!read.record)
        return std::nullopt;
    RecordFile file{json, FindPicture(json), std::move(*read.record)};
    if (file.picture.empty())
    {
        findings.push_back({json, "has no picture beside it"});
        return std::nullopt;
    }
    const std::optional<PictureHeader> header = ReadPictureHeader(file.picture);
    if (!header)
    {
        findings.push_back({file.picture, "isn't a picture that can be read"});
        return std::nullopt;
    }
    if (header->width != file.record.width || header->height != file.record.height)
    {
        findings.push_back({json, fmt::format("says {} x {} of its picture, which has {} x {}", file.record.width,
                                              file.record.height, header->width, header->height)});
        return std::nullopt;
    }
    return file;
}

Progress MakeProgress(std::string_view title, std::size_t total)
{
    return {std::string(title), total, *stderr, System::Processes::IsTerminalPlatform(*stderr)};
}

void RunIntoFolder(std::string_view verb, const Arguments& arguments, const FolderWork& work, std::string_view figure,
                   std::string_view title, Report& report)
{
    std::vector<std::string> folders = arguments.operands;
    const std::filesystem::path target = System::Text::PathFromUtf8(folders.back());
    folders.pop_back();
    const std::vector<std::filesystem::path> files = ListRecordFiles(folders, report);
    const std::string error = MakeFolder(target);
    if (!error.empty())
    {
        report.Fail(target, error);
        return;
    }
    std::int64_t written = 0;
    RunRecords<std::int64_t>(
        verb, files, [&](const RecordFile& file, Findings& findings) { return work(file, target, findings); },
        [&written](std::int64_t count) { written += count; }, report);
    report.AddFigure("files", "files", static_cast<std::int64_t>(files.size()));
    report.AddFigure(figure, title, written);
}

} // namespace Orvik::Data
