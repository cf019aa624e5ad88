#include "Core/System/Text/Paths.h"
#include "Data/Formats/ClassKeeper.h"
#include "Data/Formats/Exporter.h"
#include "Data/Records/Names.h"
#include "Data/Verbs/RecordRun.h"
#include "Data/Verbs/Verb.h"

#include <fmt/format.h>
#include <set>

namespace Orvik::Data
{
namespace
{

namespace fs = std::filesystem;

constexpr const char* s_unlabelled = "unlabelled";

/// What one run was asked for.
struct Job
{
    std::string format;
    fs::path source;
    fs::path target;
    std::string unlabelled; ///< the class of what has no label
    std::optional<Split> split;
};

std::unique_ptr<Exporter> MakeExporter(const Job& job, const Arguments& arguments, const ExportTarget& target)
{
    if (job.format == "coco")
        return MakeCocoExporter(target);
    if (job.format == "yolo")
        return MakeYoloExporter(target);
    return MakeVocExporter(target, arguments.Has("--zero-based"));
}

std::string ReadJob(const Arguments& arguments, Job& job)
{
    job.format = arguments.operands[0];
    job.source = System::Text::PathFromUtf8(arguments.operands[1]);
    job.target = System::Text::PathFromUtf8(arguments.operands[2]);
    job.unlabelled = arguments.Get("--unlabelled").value_or(s_unlabelled);
    if (job.format != "coco" && job.format != "yolo" && job.format != "voc")
        return fmt::format("unknown format {}", job.format);
    if (!IsLabel(job.unlabelled))
        return "--unlabelled takes a name that can be a label";
    std::string error;
    const std::int64_t seed = GetInteger(arguments, "--seed", 0, 0, INT64_MAX, error);
    const std::optional<std::string> shares = arguments.Get("--split");
    if (shares)
        job.split = Split::Parse(*shares, static_cast<std::uint64_t>(seed));
    if (error.empty() && shares && !job.split)
        error = "--split takes two or three shares that make 100 in all, such as 80,10,10";
    return error;
}

const std::string& GetLabel(const Annotation& annotation, const Job& job)
{
    return annotation.label.empty() ? job.unlabelled : annotation.label;
}

/// All labels in use, in the order of their names.
std::vector<std::string> CollectLabels(const std::vector<fs::path>& files, const Job& job)
{
    Progress progress = MakeProgress("labels", files.size());
    std::set<std::string> labels;
    OrderedWork<std::set<std::string>>::Run(
        files.size(),
        [&](std::size_t index)
        {
            Findings findings; // the export itself reports them
            const std::optional<RecordFile> file = ReadRecordFile(files[index], findings);
            std::set<std::string> own;
            if (file && file->record.kind == Record::Kind::Annotations)
                for (const Annotation& annotation : file->record.annotations)
                    own.insert(GetLabel(annotation, job));
            return own;
        },
        [&](std::size_t /*index*/, std::set<std::string> own)
        {
            labels.merge(own);
            progress.Step();
        });
    return {labels.begin(), labels.end()};
}

/// Nothing for a file that isn't exported.
std::optional<ExportedPicture> MakePicture(const RecordFile& file, const ClassList& classes, const Job& job,
                                           Findings& findings)
{
    if (file.record.kind == Record::Kind::Snip)
        return std::nullopt;
    ExportedPicture picture{file.record, file.picture, System::Text::PathToUtf8(file.picture.filename()), {}, {}};
    for (const Annotation& annotation : file.record.annotations)
    {
        const std::optional<std::size_t> number = classes.Find(GetLabel(annotation, job));
        if (!number)
        {
            findings.push_back({file.json, fmt::format("the label \"{}\" isn't in the list of classes; --add-classes "
                                                       "adds it",
                                                       GetLabel(annotation, job))});
            return std::nullopt;
        }
        picture.classes.push_back(*number);
    }
    if (job.split)
        picture.subset = job.split->Find(picture.record.id);
    return picture;
}

/// What the consumer of all pictures counts.
struct Counts
{
    std::int64_t pictures = 0;
    std::int64_t annotations = 0;
};

void ExportFiles(const std::vector<fs::path>& files, const ClassList& classes, const Job& job, Exporter& exporter,
                 Report& report)
{
    using Made = std::optional<ExportedPicture>;
    Counts counts;
    RunRecords<Made>(
        "export", files,
        [&](const RecordFile& file, Findings& findings) -> Made
        {
            Made picture = MakePicture(file, classes, job, findings);
            const std::string error = picture ? exporter.WriteFiles(*picture) : "";
            if (error.empty())
                return picture;
            findings.push_back({file.picture, fmt::format("in the data set: {}", error)});
            return std::nullopt;
        },
        [&](const Made& picture)
        {
            if (!picture)
                return;
            ++counts.pictures;
            counts.annotations += static_cast<std::int64_t>(picture->classes.size());
            const std::string error = exporter.Add(*picture);
            if (!error.empty())
                report.Fail(job.target, error);
        },
        report);
    const std::string error = exporter.Finish();
    if (!error.empty())
        report.Fail(job.target, error);
    report.AddFigure("files", "files", static_cast<std::int64_t>(files.size()));
    report.AddFigure("pictures", "pictures exported", counts.pictures);
    report.AddFigure("annotations", "annotations exported", counts.annotations);
    report.AddFigure("classes", "classes", static_cast<std::int64_t>(classes.GetNames().size()));
}

std::string Run(const Arguments& arguments, Report& report)
{
    Job job;
    const std::string wrong = ReadJob(arguments, job);
    if (!wrong.empty())
        return wrong;
    const std::vector<fs::path> files = ListRecordFiles({arguments.operands[1]}, report);
    const std::optional<std::string> list = arguments.Get("--classes");
    ClassKeeper keeper(list ? System::Text::PathFromUtf8(*list) : ClassList::GetPath(job.source),
                       arguments.Has("--add-classes"));
    std::string error = keeper.Load();
    if (error.empty() && report.GetExitCode() != ExitCode::CannotRun && keeper.NeedsNames())
        error = keeper.Add(CollectLabels(files, job));
    if (!error.empty())
        report.Fail(keeper.GetPath(), error);
    if (report.GetExitCode() == ExitCode::CannotRun)
        return {};

    const bool mayReplace = arguments.Has("--force");
    const OutputFiles output(mayReplace);
    const std::unique_ptr<Exporter> exporter =
        MakeExporter(job, arguments, {job.target, keeper.GetClasses(), output, job.split.has_value(), mayReplace});
    error = exporter->Begin();
    if (!error.empty())
        report.Fail(job.target, error);
    else
        ExportFiles(files, keeper.GetClasses(), job, *exporter, report);
    return {};
}

} // namespace

Verb GetExportVerb()
{
    return {{"export",
             "coco|yolo|voc FOLDER OUT",
             3,
             3,
             "Write the pictures and annotations of a folder as a data set",
             "The order of the classes is that of FOLDER/classes.txt. It is made, in the order of the names, if it\n"
             "isn't there, and never changes by itself. Single selections have no annotations, and are left out.\n",
             {{"--split", "SHARES", "Divide into training, validation and test, in percent: 80,10,10 or 80,20"},
              {"--seed", "NUMBER", "Divide in another way (0); a picture stays where it is when others are added"},
              {"--classes", "FILE", "Keep the list of classes in this file"},
              {"--add-classes", nullptr, "Add new labels to the end of the list"},
              {"--unlabelled", "NAME", "The class of annotations without a label (unlabelled)"},
              {"--zero-based", nullptr, "voc: count edges from 0; else pixels from 1, the last one within the box"},
              {"--force", nullptr, "Replace files that exist"}}},
            &Run};
}

} // namespace Orvik::Data
