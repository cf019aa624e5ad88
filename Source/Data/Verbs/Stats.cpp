#include "Core/System/Text/Paths.h"
#include "Data/Run/OutputFiles.h"
#include "Data/Verbs/RecordRun.h"
#include "Data/Verbs/StatsCounts.h"
#include "Data/Verbs/Verb.h"

#include <fmt/format.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace Orvik::Data
{
namespace
{

std::string MakeJson(const std::vector<Column>& columns)
{
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartArray();
    for (const Column& column : columns)
    {
        writer.StartObject();
        writer.Key("name");
        writer.String(column.name.c_str(), static_cast<rapidjson::SizeType>(column.name.size()));
        writer.Key("count");
        writer.Int64(column.count);
        writer.EndObject();
    }
    writer.EndArray();
    return buffer.GetString();
}

void AddTable(Report& report, const char* name, const std::string& title, const std::vector<Column>& columns)
{
    report.AddJson(name, MakeJson(columns));
    report.AddLine("");
    report.AddLine(title);
    for (const Column& column : columns)
        report.AddLine(
            fmt::format("  {:<28} {}", column.name.empty() ? "(no label)" : MakeShowable(column.name), column.count));
}

void AddPixels(Report& report, const char* name, const PixelCounts& counts)
{
    report.AddJson(name, fmt::format("{{\"least\":{},\"median\":{},\"most\":{}}}", counts.GetLeast(),
                                     counts.GetMedian(), counts.GetMost()));
    report.AddLine(
        fmt::format("{}: {} to {} pixels, median {}", name, counts.GetLeast(), counts.GetMost(), counts.GetMedian()));
}

std::string Run(const Arguments& arguments, Report& report)
{
    const std::vector<std::filesystem::path> files = ListRecordFiles(arguments.operands, report);
    StatsCounts counts;
    RunRecords<Record>(
        "stats", files, [](const RecordFile& file, Findings& /*findings*/) { return file.record; },
        [&counts](const Record& record) { counts.Add(record); }, report);

    const std::optional<std::string> svg = arguments.Get("--svg");
    if (svg)
    {
        const std::filesystem::path path = System::Text::PathFromUtf8(*svg);
        const std::string error = OutputFiles(arguments.Has("--force")).SaveText(path, MakeStatsSvg(counts));
        if (!error.empty())
            report.AddFinding(path, error);
    }
    report.AddFigure("files", "files", static_cast<std::int64_t>(files.size()));
    report.AddFigure("pictures", "pictures with annotations", counts.GetPictures());
    report.AddFigure("snips", "single selections", counts.GetSnips());
    report.AddFigure("annotations", "annotations", counts.GetAnnotations());
    report.AddFigure("polygons", "polygons among them", counts.GetPolygons());
    AddPixels(report, "widths", counts.GetWidths());
    AddPixels(report, "heights", counts.GetHeights());
    AddTable(report, "labels", "Labels", counts.GetLabels());
    AddTable(report, "sizes", "Side of a square of the same area, pixels", counts.GetSizes());
    AddTable(report, "aspects", "Width to height", counts.GetAspects());
    AddTable(report, "overlaps", "Overlapping pairs, by the shared part of their area", counts.GetOverlaps());
    return {};
}

} // namespace

Verb GetStatsVerb()
{
    return {{"stats",
             "FOLDER...",
             1,
             s_anyNumber,
             "Count labels, sizes, aspect ratios and overlaps",
             "Single selections are counted alone.\n",
             {{"--svg", "FILE", "Draw the counts into this file as well"},
              {"--force", nullptr, "Replace the file if it exists"}}},
            &Run};
}

} // namespace Orvik::Data
