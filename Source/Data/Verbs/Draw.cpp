#include "Data/Painting/Marks.h"
#include "Data/Records/PictureFile.h"
#include "Data/Run/OutputFiles.h"
#include "Data/Run/Pool.h"
#include "Data/Verbs/RecordRun.h"
#include "Data/Verbs/Verb.h"

namespace Orvik::Data
{
namespace
{

constexpr std::uint32_t s_textSize = 14;
constexpr std::int32_t s_thickness = 2;

bool DrawFile(const RecordFile& file, const std::filesystem::path& folder, TextPen* pen, const OutputFiles& output,
              Findings& findings)
{
    std::optional<System::Multimedia::Bitmap> picture = LoadPicture(file.picture);
    if (!picture)
    {
        findings.push_back({file.picture, "the picture is damaged"});
        return false;
    }
    const bool isSnip = file.record.kind == Record::Kind::Snip;
    DrawMarks(*picture, file.record.annotations, isSnip ? nullptr : pen, s_thickness);
    const std::filesystem::path path = folder / (file.record.id + ".png");
    const std::string error = output.SavePng(path, *picture);
    if (!error.empty())
        findings.push_back({path, error});
    return error.empty();
}

std::string Run(const Arguments& arguments, Report& report)
{
    const bool hasText = !arguments.Has("--no-text") && TextPen::Open(s_textSize, report) != nullptr;
    const OutputFiles output(arguments.Has("--force"));
    Pool<TextPen> pens([hasText] { return hasText ? TextPen::Open(s_textSize) : nullptr; });
    RunIntoFolder(
        "draw", arguments,
        [&](const RecordFile& file, const std::filesystem::path& folder, Findings& findings)
        { return DrawFile(file, folder, pens.Borrow().Get(), output, findings) ? 1 : 0; },
        "pictures", "pictures written", report);
    return {};
}

} // namespace

Verb GetDrawVerb()
{
    return {{"draw",
             "FOLDER... OUT",
             2,
             s_anyNumber,
             "Write every picture with its rectangles, polygons and labels drawn on it",
             "A picture is named OUT/<identifier of the picture>.png. Each label has a colour of its own. A\n"
             "rectangle without a label bears its number.\n",
             {{"--no-text", nullptr, "Draw no names"}, {"--force", nullptr, "Replace files that exist"}}},
            &Run};
}

} // namespace Orvik::Data
