#include "Core/System/Text/Guid.h"
#include "Core/System/Text/Paths.h"
#include "Data/Records/ClassList.h"
#include "Data/Records/Folder.h"
#include "Data/Records/Names.h"
#include "Data/Records/PictureFile.h"
#include "Data/Verbs/RecordRun.h"
#include "Data/Verbs/Verb.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <unordered_set>

namespace Orvik::Data
{
namespace
{

namespace fs = std::filesystem;

struct HashId
{
    std::size_t operator()(const System::GUID& id) const noexcept
    {
        return static_cast<std::size_t>(id.m_lowPart ^ id.m_highPart);
    }
};

/// The labels that are known, of each folder.
using KnownLabels = std::map<fs::path, LoadedClasses>;

/// `--labels` names one list for all folders; else each has its own, or none.
KnownLabels LoadLabels(const Arguments& arguments, Report& report)
{
    KnownLabels known;
    const std::optional<std::string> list = arguments.Get("--labels");
    for (const std::string& folder : arguments.operands)
    {
        const fs::path path = System::Text::PathFromUtf8(folder);
        const fs::path file = list ? System::Text::PathFromUtf8(*list) : ClassList::GetPath(path);
        LoadedClasses loaded = LoadClasses(file);
        if (list && !loaded.exists)
            report.Fail(file, "can't be read");
        if (!loaded.error.empty())
            report.AddFinding(file, loaded.error);
        known.emplace((path / "file").parent_path(), std::move(loaded)); // as its files say it: "shots" for "shots/"
    }
    return known;
}

void CheckLabels(const RecordFile& file, const KnownLabels& known, Findings& findings)
{
    const auto labels = known.find(file.json.parent_path());
    if (labels == known.end() || !labels->second.exists || !labels->second.error.empty())
        return;
    for (const Annotation& annotation : file.record.annotations)
        if (!annotation.label.empty() && !labels->second.classes.Find(annotation.label))
            findings.push_back(
                {file.json, fmt::format("annotation {}: unknown label \"{}\"", annotation.id, annotation.label)});
}

/// The identifiers in a file, once it is clean.
std::vector<System::GUID> CheckRecord(const RecordFile& file, const KnownLabels& known, Findings& findings)
{
    CheckLabels(file, known, findings);
    if (!LoadPicture(file.picture))
        findings.push_back({file.picture, "the picture is damaged, or larger than the program can show"});
    std::vector<System::GUID> ids = {System::ParseGuid(file.record.id)};
    if (file.record.kind == Record::Kind::Annotations)
        for (const Annotation& annotation : file.record.annotations)
            ids.push_back(System::ParseGuid(annotation.id));
    return ids;
}

/// Pictures that the program has named, and that have no JSON file.
void CheckPictures(const std::vector<std::string>& folders, Report& report)
{
    for (const std::string& folder : folders)
        for (const fs::path& picture : ListFiles(System::Text::PathFromUtf8(folder), {".png", ".bmp"}).files)
        {
            fs::path json = picture;
            json.replace_extension(".json");
            std::error_code error;
            if (IsIdentifier(System::Text::PathToUtf8(picture.stem())) && !fs::is_regular_file(json, error))
                report.AddFinding(picture, "has no JSON file beside it");
        }
}

std::string Run(const Arguments& arguments, Report& report)
{
    const KnownLabels known = LoadLabels(arguments, report);
    const std::vector<fs::path> files = ListRecordFiles(arguments.operands, report);
    std::unordered_set<System::GUID, HashId> ids;
    std::int64_t annotations = 0;
    RunParts<std::vector<System::GUID>>(
        "check", files.size(), [&](std::size_t index) { return files[index]; },
        [&](std::size_t index, Findings& findings)
        {
            const std::optional<RecordFile> file = ReadRecordFile(files[index], findings);
            return file ? CheckRecord(*file, known, findings) : std::vector<System::GUID>();
        },
        [&](std::size_t index, const std::vector<System::GUID>& found)
        {
            annotations += found.empty() ? 0 : static_cast<std::int64_t>(found.size()) - 1;
            for (const System::GUID& id : found)
                if (!ids.insert(id).second)
                    report.AddFinding(files[index],
                                      fmt::format("the identifier {} is another file's too", id.ToString()));
        },
        report);
    CheckPictures(arguments.operands, report);
    report.AddFigure("files", "files", static_cast<std::int64_t>(files.size()));
    report.AddFigure("annotations", "annotations", annotations);
    report.AddFigure("findingCount", "findings", static_cast<std::int64_t>(report.GetFindingCount()));
    return {};
}

} // namespace

Verb GetCheckVerb()
{
    return {{"check",
             "FOLDER...",
             1,
             s_anyNumber,
             "Check every JSON file against its schema and its picture, one line a finding",
             "Looks at the schema, the picture and its size, rectangles inside the picture, polygons that are\n"
             "closed and reach as far as their rectangle, identifiers that are there once, names that agree,\n"
             "pictures with such a name and no JSON file, and labels that classes.txt in the folder doesn't\n"
             "list, if it is there.\n",
             {{"--labels", "FILE", "Take the known labels from this file, one name a line"}}},
            &Run};
}

} // namespace Orvik::Data
