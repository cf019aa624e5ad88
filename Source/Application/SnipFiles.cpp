#include "Application/SnipFiles.h"

#include "Application/SnipJson.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Text/Files.h"
#include "Core/System/Text/Paths.h"
#include "Core/System/Time/Trace.h"
#include "Core/System/Types/GuidGeneration.h"

#include <exception>
#include <system_error>

namespace Orvik::SnipBench
{
namespace
{

namespace Log = System::Log;
using System::GUID;
using Result = Graphics::Tools::SnipBench::Result;

std::filesystem::path MakeFilePath(const SnipFileSettings& settings, const GUID& id, std::string_view extension)
{
    std::string name = id.ToString() + ".";
    name += extension;
    return System::Text::Join(settings.directory, name);
}

void ShowAbsolutePath(const SnipFileSettings& settings, const std::filesystem::path& path)
{
    const std::filesystem::path absolute = System::Text::MakeAbsolute(path);
    if (settings.showText)
        settings.showText(System::Text::PathToUtf8(absolute));
}

/// In place of the path. Here the directory that can't be made absolute is no further failure.
void ShowFailure(const SnipFileSettings& settings, const std::filesystem::path& path)
{
    if (!settings.showText)
        return;
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    settings.showText("Not saved: " + System::Text::PathToUtf8(error ? path : absolute));
}

void ShowTakenBack(const SnipFileSettings& settings, const std::filesystem::path& path)
{
    const std::filesystem::path absolute = System::Text::MakeAbsolute(path);
    if (settings.showText)
        settings.showText("Taken back: " + System::Text::PathToUtf8(absolute));
}

/// A file that isn't there is as good as removed.
void RemoveFile(const std::filesystem::path& path)
{
    std::error_code error;
    std::filesystem::remove(path, error);
    if (error)
        Log::Write(Log::s_snipBench, Log::MessageTypeID::Error, "Failed to remove file: ", path);
}

/// Writes the text that `makeText` returns as the whole file. A file that can't be opened isn't logged; one that can't
/// be written, or that another program keeps, is logged, and keeps what it held before. An exception on the way, such
/// as one for lack of memory, costs this file but not the run. The user is shown each failure.
template <typename MakeText>
void WriteMetaFile(const SnipFileSettings& settings, const std::filesystem::path& path, const MakeText& makeText)
{
    const System::Time::TraceScope step("JSON file");
    auto result = System::Text::Replacement::NotWritten;
    try
    {
        result = System::Text::ReplaceFile(path, makeText());
    }
    catch (const std::exception&)
    {
        // nothing is written then
    }
    if (result == System::Text::Replacement::NotWritten || result == System::Text::Replacement::Held)
        Log::Write(Log::s_snipBench, Log::MessageTypeID::Error, "Failed to save meta file: ", path);
    if (result != System::Text::Replacement::Done)
        ShowFailure(settings, path);
}

/// The rectangles of this process, and the identifier of the one picture they lie on.
struct AnnotationList
{
    GUID imageId = System::GenerateGuid();
    std::vector<AnnotationRecord> records;
    std::int64_t startTime = 0; ///< of the latest selection, like the picture's size
    std::uint16_t width = 0;
    std::uint16_t height = 0;
};

AnnotationList& GetAnnotationList()
{
    static AnnotationList s_list;
    return s_list;
}

/// With a label a polygon's ring is kept too.
AnnotationRecord MakeRecord(const Result& result)
{
    AnnotationRecord record{System::GenerateGuid(), *result.bounds};
    if (result.label == nullptr)
        return record;
    record.label = *result.label;
    if (result.polygon == nullptr)
        return record;
    record.polygon = *result.polygon;
    for (System::Math::Point& corner : record.polygon)
        corner = {corner.x + result.bounds->left, corner.y + result.bounds->top};
    return record;
}

void WriteAnnotationFile(const SnipFileSettings& settings, const AnnotationList& list,
                         const std::filesystem::path& path)
{
    WriteMetaFile(settings, path,
                  [&]
                  { return MakeAnnotationJson(list.imageId, list.startTime, list.width, list.height, list.records); });
}

} // namespace

bool SaveImage(const System::Multimedia::Bitmap& bitmap, const std::string& format, const std::string& path)
{
    const System::Time::TraceScope step("image file");
    if (format == "png")
        return bitmap.SavePng(path);
    if (format == "bmp")
        return bitmap.SaveBmp(path);
    Log::Write(Log::s_snipBench, Log::MessageTypeID::Error, "Failed to save image file: ", path);
    return false;
}

std::optional<SnipPaths> SaveSnip(Result& result, const SnipFileSettings& settings)
{
    if (result.snip == nullptr)
        return std::nullopt;
    const System::Time::TraceScope step("save");
    const GUID id = System::GenerateGuid();
    const std::filesystem::path imagePath = MakeFilePath(settings, id, settings.format);
    ShowAbsolutePath(settings, imagePath);

    if (result.polygon != nullptr && !settings.keepMask)
    {
        const System::Time::TraceScope mask("mask");
        result.snip->ClearOutsidePolygon(*result.polygon, false);
    }
    if (!SaveImage(*result.snip, settings.format, System::Text::PathToUtf8(imagePath)))
    {
        ShowFailure(settings, imagePath);
        return std::nullopt;
    }
    const std::filesystem::path metaPath = MakeFilePath(settings, id, "json");
    WriteMetaFile(settings, metaPath,
                  [&] {
                      return MakeMetaJson(id, result.startTime, result.snip->GetWidth(), result.snip->GetHeight(),
                                          result.polygon);
                  });
    return SnipPaths{imagePath, metaPath};
}

void TakeSnipBack(const SnipPaths& paths, const SnipFileSettings& settings)
{
    ShowTakenBack(settings, paths.image);
    RemoveFile(paths.meta);
    RemoveFile(paths.image);
}

bool SaveAnnotation(Result& result, const SnipFileSettings& settings)
{
    if (result.capture == nullptr)
        return false;
    if (result.bounds == nullptr)
    {
        Log::Write(Log::s_snipBench, Log::MessageTypeID::Error, "Expected valid rectangle in parameter 'info'.");
        return false;
    }

    const System::Time::TraceScope step("save");
    AnnotationList& list = GetAnnotationList();
    if (list.records.empty())
    {
        const std::filesystem::path imagePath = MakeFilePath(settings, list.imageId, settings.format);
        if (!SaveImage(*result.capture, settings.format, System::Text::PathToUtf8(imagePath)))
        {
            ShowFailure(settings, imagePath);
            return false;
        }
    }
    list.records.push_back(MakeRecord(result));
    list.startTime = result.startTime;
    list.width = result.capture->GetWidth();
    list.height = result.capture->GetHeight();

    const std::filesystem::path path = MakeFilePath(settings, list.imageId, "json");
    ShowAbsolutePath(settings, path);
    WriteAnnotationFile(settings, list, path);
    return true;
}

bool TakeAnnotationBack(const SnipFileSettings& settings)
{
    AnnotationList& list = GetAnnotationList();
    if (list.records.empty())
        return false;
    const std::filesystem::path path = MakeFilePath(settings, list.imageId, "json");
    ShowTakenBack(settings, path);
    list.records.pop_back();
    if (!list.records.empty())
    {
        WriteAnnotationFile(settings, list, path);
        return true;
    }
    RemoveFile(path);
    RemoveFile(MakeFilePath(settings, list.imageId, settings.format));
    return true;
}

} // namespace Orvik::SnipBench
