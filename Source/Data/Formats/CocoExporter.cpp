// COCO: one JSON file with all pictures and annotations, beside the folder of the pictures.
#include "Data/Formats/Exporter.h"
#include "Data/Formats/StreamedFile.h"

#include <cstdlib>
#include <fmt/format.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <system_error>

namespace Orvik::Data
{
namespace
{

namespace fs = std::filesystem;
using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

constexpr const char* s_writeError = "can't be written";

void WriteText(Writer& writer, const char* key, const std::string& value)
{
    writer.Key(key);
    writer.String(value.c_str(), static_cast<rapidjson::SizeType>(value.size()));
}

void WriteNumber(Writer& writer, const char* key, std::int64_t value)
{
    writer.Key(key);
    writer.Int64(value);
}

/// Twice the area within the ring, by its corners.
std::int64_t GetDoubleArea(const Ring& ring)
{
    std::int64_t sum = 0;
    for (std::size_t i = 1; i < ring.size(); ++i)
        sum += std::int64_t{ring[i - 1].x} * ring[i].y - std::int64_t{ring[i].x} * ring[i - 1].y;
    return std::abs(sum);
}

/// One list of the corners; none for a rectangle.
void WriteSegmentation(Writer& writer, const Ring& ring)
{
    writer.Key("segmentation");
    writer.StartArray();
    if (!ring.empty())
    {
        writer.StartArray();
        for (const System::Math::Point& corner : GetOpenRing(ring))
        {
            writer.Int(corner.x);
            writer.Int(corner.y);
        }
        writer.EndArray();
    }
    writer.EndArray();
}

std::string MakeImage(const ExportedPicture& picture, std::int64_t id)
{
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    WriteNumber(writer, "id", id);
    WriteText(writer, "file_name", picture.name);
    WriteNumber(writer, "width", picture.record.width);
    WriteNumber(writer, "height", picture.record.height);
    WriteText(writer, "date_captured", picture.record.time);
    writer.EndObject();
    return buffer.GetString();
}

std::string MakeAnnotation(const Annotation& annotation, std::size_t category, std::int64_t imageId, std::int64_t id)
{
    const System::Math::Rectangle& box = annotation.box;
    const std::int64_t area =
        annotation.ring.empty() ? std::int64_t{box.GetWidth()} * box.GetHeight() * 2 : GetDoubleArea(annotation.ring);
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    WriteNumber(writer, "id", id);
    WriteNumber(writer, "image_id", imageId);
    WriteNumber(writer, "category_id", static_cast<std::int64_t>(category) + 1);
    writer.Key("bbox");
    writer.StartArray();
    for (const std::int64_t number :
         {std::int64_t{box.left}, std::int64_t{box.top}, std::int64_t{box.GetWidth()}, std::int64_t{box.GetHeight()}})
        writer.Int64(number);
    writer.EndArray();
    writer.Key("area");
    if (area % 2 == 0)
        writer.Int64(area / 2);
    else
        writer.Double(static_cast<double>(area) / 2);
    WriteNumber(writer, "iscrowd", 0);
    WriteSegmentation(writer, annotation.ring);
    writer.EndObject();
    return buffer.GetString();
}

/// One file of annotations. Pictures come first in it; the annotations are written aside until the end.
class CocoFile
{
public:
    CocoFile(const fs::path& path, const ClassList& classes)
        : m_images(path), m_annotations(fs::path(path) += ".annotations"), m_classes(classes)
    {
    }

    [[nodiscard]] const fs::path& GetPath() const { return m_images.GetPath(); }

    [[nodiscard]] bool Begin()
    {
        return m_images.Open() && m_annotations.Open() && m_images.Write(MakeHead()) &&
               m_annotations.Write("],\n\"annotations\": [");
    }

    [[nodiscard]] bool Add(const ExportedPicture& picture)
    {
        const char* const imageBreak = m_imageCount == 0 ? "\n" : ",\n";
        bool isWritten = m_images.Write(imageBreak + MakeImage(picture, ++m_imageCount));
        for (std::size_t i = 0; i < picture.classes.size(); ++i)
        {
            const char* const lineBreak = m_annotationCount == 0 ? "\n" : ",\n";
            isWritten = isWritten && m_annotations.Write(lineBreak + MakeAnnotation(picture.record.annotations[i],
                                                                                    picture.classes[i], m_imageCount,
                                                                                    ++m_annotationCount));
        }
        return isWritten;
    }

    [[nodiscard]] std::string Finish(const OutputFiles& output)
    {
        if (!m_annotations.Write("]\n}\n") || !m_images.Append(m_annotations))
            return s_writeError;
        return m_images.Finish(output);
    }

private:
    [[nodiscard]] std::string MakeHead() const
    {
        rapidjson::StringBuffer buffer;
        Writer writer(buffer);
        writer.StartArray();
        for (std::size_t i = 0; i < m_classes.GetNames().size(); ++i)
        {
            writer.StartObject();
            WriteNumber(writer, "id", static_cast<std::int64_t>(i) + 1);
            WriteText(writer, "name", m_classes.GetNames()[i]);
            WriteText(writer, "supercategory", "");
            writer.EndObject();
        }
        writer.EndArray();
        return fmt::format("{{\n\"info\": {{\"description\": \"SnipBench\", \"version\": \"1\"}},\n\"licenses\": [],\n"
                           "\"categories\": {},\n\"images\": [",
                           buffer.GetString());
    }

    StreamedFile m_images;
    StreamedFile m_annotations;
    const ClassList& m_classes;
    std::int64_t m_imageCount = 0;
    std::int64_t m_annotationCount = 0;
};

class CocoExporter : public Exporter
{
public:
    explicit CocoExporter(const ExportTarget& target)
        : m_target(target), m_all(target.folder / "annotations.json", target.classes)
    {
        if (!target.isSplit)
            return;
        for (const char* const name : {"train", "val", "test"})
            m_parts.push_back(
                std::make_unique<CocoFile>(target.folder / fmt::format("annotations-{}.json", name), target.classes));
    }

    std::string Begin() override
    {
        std::string error = MakeFolder(m_target.folder / "images");
        std::error_code ignored;
        if (error.empty() && !m_target.mayReplace && fs::exists(m_all.GetPath(), ignored))
            error = "annotations.json exists already; --force replaces it";
        if (error.empty() && !m_all.Begin())
            error = s_writeError;
        for (const std::unique_ptr<CocoFile>& part : m_parts)
            if (error.empty() && !part->Begin())
                error = s_writeError;
        return error;
    }

    std::string WriteFiles(const ExportedPicture& picture) const override
    {
        return m_target.output.Copy(picture.source, m_target.folder / "images" / picture.name);
    }

    std::string Add(const ExportedPicture& picture) override
    {
        bool isWritten = m_all.Add(picture);
        if (picture.subset && !m_parts.empty())
            isWritten = m_parts[static_cast<std::size_t>(*picture.subset)]->Add(picture) && isWritten;
        return isWritten ? "" : s_writeError;
    }

    std::string Finish() override
    {
        std::string error = m_all.Finish(m_target.output);
        for (const std::unique_ptr<CocoFile>& part : m_parts)
        {
            const std::string own = part->Finish(m_target.output);
            if (error.empty())
                error = own;
        }
        return error;
    }

private:
    ExportTarget m_target;
    CocoFile m_all;
    std::vector<std::unique_ptr<CocoFile>> m_parts; ///< by `Subset`
};

} // namespace

std::unique_ptr<Exporter> MakeCocoExporter(const ExportTarget& target)
{
    return std::make_unique<CocoExporter>(target);
}

} // namespace Orvik::Data
