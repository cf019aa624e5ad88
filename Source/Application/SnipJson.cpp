#include "Application/SnipJson.h"

#include "Core/System/Time/Timestamp.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

namespace Orvik::SnipBench
{
namespace
{

/// The version of both formats.
constexpr unsigned s_formatVersion = 1;

/// Writes what both formats begin with, and keeps the text.
class SnipWriter
{
public:
    SnipWriter() { m_writer.SetIndent(' ', 4); }

    void BeginFile(const System::GUID& id, std::int64_t startTime)
    {
        m_writer.StartObject();
        m_writer.Key("version");
        m_writer.Uint(s_formatVersion);
        WriteText("id", id.ToString());
        WriteText("creationDateTime", System::Time::FormatTimestamp(startTime));
    }

    void BeginImage(std::uint16_t width, std::uint16_t height)
    {
        m_writer.Key("image");
        m_writer.StartObject();
        m_writer.Key("size");
        m_writer.StartObject();
        m_writer.Key("width");
        m_writer.Uint(width);
        m_writer.Key("height");
        m_writer.Uint(height);
        m_writer.EndObject();
    }

    void WriteText(const char* key, const std::string& value)
    {
        m_writer.Key(key);
        m_writer.String(value.c_str(), static_cast<rapidjson::SizeType>(value.size()));
    }

    void WriteNumber(const char* key, std::int32_t value)
    {
        m_writer.Key(key);
        m_writer.Int(value);
    }

    void WriteCorners(const char* key, const std::vector<System::Math::Point>& corners)
    {
        BeginArray(key);
        for (const System::Math::Point& corner : corners)
        {
            BeginObject();
            WriteNumber("x", corner.x);
            WriteNumber("y", corner.y);
            EndObject();
        }
        EndArray();
    }

    void BeginArray(const char* key)
    {
        m_writer.Key(key);
        m_writer.StartArray();
    }

    void EndArray() { m_writer.EndArray(); }

    void BeginObject() { m_writer.StartObject(); }

    void BeginObject(const char* key)
    {
        m_writer.Key(key);
        m_writer.StartObject();
    }

    void EndObject() { m_writer.EndObject(); }

    [[nodiscard]] std::string TakeText() const { return {m_buffer.GetString(), m_buffer.GetSize()}; }

private:
    rapidjson::StringBuffer m_buffer;
    // The files are ASCII, so that every reader takes them.
    rapidjson::PrettyWriter<rapidjson::StringBuffer, rapidjson::UTF8<>, rapidjson::ASCII<>> m_writer{m_buffer};
};

} // namespace

std::string MakeMetaJson(const System::GUID& id, std::int64_t startTime, std::uint16_t width, std::uint16_t height,
                         const std::vector<System::Math::Point>* polygon)
{
    SnipWriter writer;
    writer.BeginFile(id, startTime);
    writer.BeginImage(width, height);
    if (polygon != nullptr)
        writer.WriteCorners("mask", *polygon);
    writer.EndObject();
    writer.EndObject();
    return writer.TakeText();
}

std::string MakeAnnotationJson(const System::GUID& imageId, std::int64_t startTime, std::uint16_t width,
                               std::uint16_t height, std::span<const AnnotationRecord> annotations)
{
    SnipWriter writer;
    writer.BeginFile(imageId, startTime);
    writer.BeginImage(width, height);
    writer.EndObject();
    writer.BeginArray("annotations");
    for (const AnnotationRecord& annotation : annotations)
    {
        writer.BeginObject();
        writer.WriteText("id", annotation.id.ToString());
        writer.BeginObject("rectangle");
        writer.WriteNumber("xmin", annotation.bounds.left);
        writer.WriteNumber("ymin", annotation.bounds.top);
        writer.WriteNumber("xmax", annotation.bounds.right);
        writer.WriteNumber("ymax", annotation.bounds.bottom);
        writer.EndObject();
        if (!annotation.label.empty())
            writer.WriteText("label", annotation.label);
        if (!annotation.polygon.empty())
            writer.WriteCorners("polygon", annotation.polygon);
        writer.EndObject();
    }
    writer.EndArray();
    writer.EndObject();
    return writer.TakeText();
}

} // namespace Orvik::SnipBench
