#include "Core/System/Text/Files.h"
#include "Core/System/Text/Paths.h"
#include "Core/System/Time/Timestamp.h"
#include "Data/Formats/ClassKeeper.h"
#include "Data/Formats/Importer.h"
#include "Data/Records/Names.h"
#include "Data/Records/PictureFile.h"
#include "Data/Records/RecordReader.h"
#include "Data/Run/OutputFiles.h"
#include "Data/Verbs/RecordRun.h"
#include "Data/Verbs/Verb.h"

#include <fmt/format.h>
#include <set>
#include <system_error>

namespace Orvik::Data
{
namespace
{

namespace fs = std::filesystem;

/// A picture that the program has named keeps its name, in whatever folder it is; any other gets one that follows from
/// its own, with the folder's.
std::string MakePictureId(const std::string& name)
{
    const std::size_t begin = name.rfind('/') + 1; // 0 if there is no folder
    const std::string stem = name.substr(begin, name.rfind('.') - begin);
    return IsIdentifier(stem) ? stem : MakeIdentifier(name);
}

/// Cuts an annotation to the picture; a format that didn't know its size couldn't. False if it lies elsewhere.
bool FitAnnotation(Annotation& annotation, std::int32_t width, std::int32_t height)
{
    if (!annotation.ring.empty())
        return TakeRing(annotation, annotation.ring, width, height);
    const std::optional<System::Math::Rectangle> box = FitBox(annotation.box, width, height);
    annotation.box = box.value_or(annotation.box);
    return box.has_value();
}

std::string FindTime(const ImportedPicture& picture)
{
    if (!picture.time.empty())
        return picture.time;
    std::error_code error;
    return System::Time::FormatTimestamp(System::Text::GetWriteTime(picture.source, error)); // 1970 after an error
}

/// The file's record, without its annotations' names being known. What is wrong, or nothing.
std::string MakeRecord(const ImportedPicture& picture, const PictureHeader& header, Record& record)
{
    record.id = MakePictureId(picture.name);
    record.time = FindTime(picture);
    record.width = header.width;
    record.height = header.height;
    record.annotations = picture.annotations;
    for (std::size_t i = 0; i < record.annotations.size(); ++i)
    {
        Annotation& annotation = record.annotations[i];
        annotation.id = MakeIdentifier(fmt::format("{}/{}", record.id, i));
        if (!FitAnnotation(annotation, record.width, record.height))
            return "an annotation doesn't lie within the picture";
    }
    return {};
}

/// What came of one picture.
struct Imported
{
    std::vector<std::string> labels;
    std::int64_t annotations = 0;
    std::int64_t leftOut = 0;
    bool isEmpty = false;
};

class Import
{
public:
    Import(const Importer& importer, fs::path target, std::string unlabelled, bool mayReplace)
        : m_importer(importer), m_target(std::move(target)), m_unlabelled(std::move(unlabelled)), m_output(mayReplace)
    {
    }

    [[nodiscard]] std::optional<Imported> Work(std::size_t index, Findings& findings) const
    {
        ImportedPicture picture = m_importer.Get(index);
        if (picture.error.empty() && picture.annotations.empty())
            return Imported{{}, 0, 0, true};
        const std::optional<PictureHeader> header =
            picture.error.empty() ? ReadPictureHeader(picture.source) : std::nullopt;
        const bool isOfSize = header && (picture.width == 0 || picture.width == header->width) &&
                              (picture.height == 0 || picture.height == header->height);
        if (picture.error.empty() && !header)
            picture.error = "its picture isn't there, or is no PNG or BMP file that can be read";
        else if (picture.error.empty() && !isOfSize)
            picture.error = "its picture has another size than it says";
        Imported imported;
        if (picture.error.empty())
            picture.error = Write(picture, *header, imported);
        if (picture.error.empty())
            return imported;
        findings.push_back({m_importer.GetPath(index), picture.error});
        return std::nullopt;
    }

private:
    [[nodiscard]] std::string Write(const ImportedPicture& picture, const PictureHeader& header,
                                    Imported& imported) const
    {
        Record record;
        std::string error = MakeRecord(picture, header, record);
        for (Annotation& annotation : record.annotations)
        {
            imported.labels.push_back(annotation.label);
            if (annotation.label == m_unlabelled)
                annotation.label.clear();
        }
        imported.annotations = static_cast<std::int64_t>(record.annotations.size());
        imported.leftOut = static_cast<std::int64_t>(picture.leftOut);
        if (!error.empty())
            return error;
        const fs::path target = m_target / (record.id + (header.isPng ? ".png" : ".bmp"));
        error = m_output.Copy(picture.source, target);
        if (!error.empty())
            return fmt::format("{}: {}", System::Text::PathToUtf8(target), error);
        const fs::path json = m_target / (record.id + ".json");
        error = m_output.SaveText(json, MakeRecordJson(record));
        return error.empty() ? "" : fmt::format("{}: {}", System::Text::PathToUtf8(json), error);
    }

    const Importer& m_importer;
    fs::path m_target;
    std::string m_unlabelled; ///< the class that stands for no label
    OutputFiles m_output;
};

struct Counts
{
    std::int64_t pictures = 0;
    std::int64_t annotations = 0;
    std::int64_t empty = 0;
    std::int64_t leftOut = 0;
    std::set<std::string> labels;
};

Counts ImportAll(const Importer& importer, const Import& import, Report& report)
{
    Counts counts;
    RunParts<std::optional<Imported>>(
        "import", importer.GetCount(), [&](std::size_t index) { return importer.GetPath(index); },
        [&](std::size_t index, Findings& findings) { return import.Work(index, findings); },
        [&](std::size_t /*index*/, const std::optional<Imported>& imported)
        {
            if (!imported)
                return;
            counts.pictures += imported->isEmpty ? 0 : 1;
            counts.empty += imported->isEmpty ? 1 : 0;
            counts.annotations += imported->annotations;
            counts.leftOut += imported->leftOut;
            if (counts.labels.size() < s_maxClasses)
                counts.labels.insert(imported->labels.begin(), imported->labels.end());
        },
        report);
    return counts;
}

/// The set's own order comes first; labels that stand in no list follow by their names.
void KeepClasses(const fs::path& folder, const Arguments& arguments, const Importer& importer, const Counts& counts,
                 Report& report)
{
    std::vector<std::string> names = importer.GetClasses();
    names.insert(names.end(), counts.labels.begin(), counts.labels.end());
    ClassKeeper keeper(ClassList::GetPath(folder), arguments.Has("--add-classes"));
    std::string error = keeper.Load();
    if (error.empty())
        error = keeper.Add(names);
    if (!error.empty())
        report.AddFinding(keeper.GetPath(), error);
}

std::string Run(const Arguments& arguments, Report& report)
{
    const std::string& format = arguments.operands[0];
    const fs::path source = System::Text::PathFromUtf8(arguments.operands[1]);
    const fs::path target = System::Text::PathFromUtf8(arguments.operands[2]);
    std::unique_ptr<Importer> importer;
    if (format == "coco")
        importer = MakeCocoImporter(source);
    else if (format == "yolo")
        importer = MakeYoloImporter(source);
    else if (format == "voc")
        importer = MakeVocImporter(source, arguments.Has("--zero-based"));
    else
        return fmt::format("unknown format {}", format);
    std::string error = importer->Open();
    if (!error.empty())
    {
        report.Fail(source, error);
        return {};
    }
    error = MakeFolder(target);
    if (!error.empty())
    {
        report.Fail(target, error);
        return {};
    }

    const Import import(*importer, target, arguments.Get("--unlabelled").value_or("unlabelled"),
                        arguments.Has("--force"));
    const Counts counts = ImportAll(*importer, import, report);
    KeepClasses(target, arguments, *importer, counts, report);
    report.AddFigure("pictures", "pictures imported", counts.pictures);
    report.AddFigure("annotations", "annotations imported", counts.annotations);
    report.AddFigure("withoutAnnotations", "pictures without annotations, left out", counts.empty);
    report.AddFigure("boxesAlone", "polygons that became their boxes", counts.leftOut);
    return {};
}

} // namespace

Verb GetImportVerb()
{
    return {{"import",
             "coco|yolo|voc IN FOLDER",
             3,
             3,
             "Read a data set into files as SnipBench writes them",
             "Pictures have to be PNG or BMP, and keep their bytes. One whose name is an identifier keeps that; any\n"
             "other gets one that follows from its name. The order of the classes goes to FOLDER/classes.txt. A\n"
             "picture without annotations is left out.\n",
             {{"--add-classes", nullptr, "Add new classes to the end of FOLDER/classes.txt, if that is there"},
              {"--unlabelled", "NAME", "The class that becomes annotations without a label (unlabelled)"},
              {"--zero-based", nullptr, "voc: numbers are edges from 0; else pixels from 1, the last one in the box"},
              {"--force", nullptr, "Replace files that exist"}}},
            &Run};
}

} // namespace Orvik::Data
