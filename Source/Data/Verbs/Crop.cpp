#include "Data/Records/PictureFile.h"
#include "Data/Run/OutputFiles.h"
#include "Data/Verbs/RecordRun.h"
#include "Data/Verbs/Verb.h"

namespace Orvik::Data
{
namespace
{

using System::Multimedia::Bitmap;

/// The annotation's part of the picture; what lies outside of its polygon is transparent black unless `isWhole`.
Bitmap CutOut(const Bitmap& picture, const Annotation& annotation, bool isWhole)
{
    const System::Math::Rectangle& box = annotation.box;
    Bitmap part = picture.Crop(box.left, box.top, box.GetWidth(), box.GetHeight());
    if (annotation.ring.empty() || isWhole)
        return part;
    Ring ring = annotation.ring;
    for (System::Math::Point& corner : ring)
        corner = {corner.x - box.left, corner.y - box.top};
    part.ClearOutsidePolygon(ring, false);
    return part;
}

std::int64_t CropFile(const RecordFile& file, const std::filesystem::path& folder, bool isWhole,
                      const OutputFiles& output, Findings& findings)
{
    if (file.record.kind == Record::Kind::Snip)
        return 0;
    const std::optional<Bitmap> picture = LoadPicture(file.picture);
    if (!picture)
    {
        findings.push_back({file.picture, "the picture is damaged"});
        return 0;
    }
    std::int64_t made = 0;
    for (const Annotation& annotation : file.record.annotations)
    {
        const std::filesystem::path path = folder / (annotation.id + ".png");
        const std::string error = output.SavePng(path, CutOut(*picture, annotation, isWhole));
        if (error.empty())
            ++made;
        else
            findings.push_back({path, error});
    }
    return made;
}

std::string Run(const Arguments& arguments, Report& report)
{
    const OutputFiles output(arguments.Has("--force"));
    const bool isWhole = arguments.Has("--keep-mask");
    RunIntoFolder(
        "crop", arguments,
        [&](const RecordFile& file, const std::filesystem::path& folder, Findings& findings)
        { return CropFile(file, folder, isWhole, output, findings); },
        "pictures", "pictures written", report);
    return {};
}

} // namespace

Verb GetCropVerb()
{
    return {{"crop",
             "FOLDER... OUT",
             2,
             s_anyNumber,
             "Write every annotation as a picture of its own",
             "A picture is named OUT/<identifier of the annotation>.png. What lies outside of a polygon is\n"
             "transparent. Single selections are pictures of their own already, and left out.\n",
             {{"--keep-mask", nullptr, "Leave what lies outside of a polygon"},
              {"--force", nullptr, "Replace files that exist"}}},
            &Run};
}

} // namespace Orvik::Data
