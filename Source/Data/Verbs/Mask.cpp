#include "Core/System/Multimedia/PolygonMask.h"
#include "Data/Run/OutputFiles.h"
#include "Data/Verbs/RecordRun.h"
#include "Data/Verbs/Verb.h"

#include <cstring>
#include <limits>

namespace Orvik::Data
{
namespace
{

using System::Math::Rectangle;
using System::Multimedia::Bitmap;

constexpr std::size_t s_pixelBytes = 3;

std::uint8_t* GetPixel(Bitmap& mask, std::int32_t x, std::int32_t y)
{
    return mask.GetPixels() + static_cast<std::size_t>(y) * mask.GetStride() +
           static_cast<std::size_t>(x) * s_pixelBytes;
}

/// White from column `left` to before `right`.
void CoverRun(Bitmap& mask, std::int32_t left, std::int32_t right, std::int32_t y)
{
    std::memset(GetPixel(mask, left, y), 0xFF, static_cast<std::size_t>(right - left) * s_pixelBytes);
}

/// White where the annotation is, `box` being the part of `area` that it takes.
void Cover(Bitmap& mask, const Rectangle& box, const Ring& ring)
{
    if (ring.empty())
    {
        for (std::int32_t y = box.top; y < box.bottom; ++y)
            CoverRun(mask, box.left, box.right, y);
        return;
    }
    // The same pixels that a selection with this polygon keeps: its edges are counted within its own picture.
    Ring own = ring;
    const Rectangle bounds = GetBounds(ring);
    for (System::Math::Point& corner : own)
        corner = {corner.x - bounds.left, corner.y - bounds.top};
    const auto width = static_cast<std::uint16_t>(bounds.GetWidth());
    const auto height = static_cast<std::uint16_t>(bounds.GetHeight());
    const System::Multimedia::PolygonMask inside(width, height, own);
    for (std::uint16_t y = 0; y < height; ++y)
        for (std::uint16_t x = 0; x < width;)
        {
            const std::uint16_t end = inside.FindRunEnd(x, y);
            if (inside.Contains(x, y))
                CoverRun(mask, box.left + x, box.left + end, box.top + y);
            x = end;
        }
}

/// Black, of the size of `area`, and white where the annotation is. Nothing if that is too large.
std::optional<Bitmap> MakeMask(const Rectangle& area, const Annotation& annotation)
{
    constexpr std::uint64_t mostBytes = std::numeric_limits<std::int32_t>::max();
    const std::uint64_t rowBytes = std::uint64_t{area.GetWidth()} * s_pixelBytes;
    if (rowBytes > std::numeric_limits<std::uint16_t>::max() || rowBytes * area.GetHeight() > mostBytes)
        return std::nullopt;
    Bitmap mask(static_cast<std::uint16_t>(area.GetWidth()), static_cast<std::uint16_t>(area.GetHeight()), 24);
    std::memset(mask.GetPixels(), 0, static_cast<std::size_t>(mask.GetSize()));
    const Rectangle& box = annotation.box;
    Cover(mask, {box.left - area.left, box.top - area.top, box.right - area.left, box.bottom - area.top},
          annotation.ring);
    return mask;
}

std::int64_t MaskFile(const RecordFile& file, const std::filesystem::path& folder, bool isCropped,
                      const OutputFiles& output, Findings& findings)
{
    std::int64_t made = 0;
    for (const Annotation& annotation : file.record.annotations)
    {
        const Rectangle whole = {0, 0, file.record.width, file.record.height};
        const std::optional<Bitmap> mask = MakeMask(isCropped ? annotation.box : whole, annotation);
        const std::filesystem::path path = folder / (annotation.id + ".png");
        const std::string error = mask ? output.SavePng(path, *mask) : "a mask that large can't be made";
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
    const bool isCropped = arguments.Has("--crop");
    RunIntoFolder(
        "mask", arguments,
        [&](const RecordFile& file, const std::filesystem::path& folder, Findings& findings)
        { return MaskFile(file, folder, isCropped, output, findings); },
        "masks", "masks written", report);
    return {};
}

} // namespace

Verb GetMaskVerb()
{
    return {{"mask",
             "FOLDER... OUT",
             2,
             s_anyNumber,
             "Write a mask of every annotation as PNG: white inside, black outside",
             "A mask is named OUT/<identifier of the annotation>.png, and as large as the whole picture. A single\n"
             "selection has one if it was a polygon.\n",
             {{"--crop", nullptr, "Make masks as large as the annotation, for the pictures of crop"},
              {"--force", nullptr, "Replace files that exist"}}},
            &Run};
}

} // namespace Orvik::Data
