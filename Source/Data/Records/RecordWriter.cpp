#include "Data/Records/RecordReader.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

namespace Orvik::Data
{
namespace
{

// The files are ASCII, so that every reader takes them.
using Target = rapidjson::ASCII<>;
using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer, rapidjson::UTF8<>, Target>;

void WriteText(Writer& writer, const char* key, const std::string& value)
{
    writer.Key(key);
    writer.String(value.c_str(), static_cast<rapidjson::SizeType>(value.size()));
}

void WriteNumber(Writer& writer, const char* key, std::int32_t value)
{
    writer.Key(key);
    writer.Int(value);
}

void WriteRing(Writer& writer, const char* key, const Ring& ring)
{
    writer.Key(key);
    writer.StartArray();
    for (const System::Math::Point& corner : ring)
    {
        writer.StartObject();
        WriteNumber(writer, "x", corner.x);
        WriteNumber(writer, "y", corner.y);
        writer.EndObject();
    }
    writer.EndArray();
}

void WriteAnnotation(Writer& writer, const Annotation& annotation)
{
    writer.StartObject();
    WriteText(writer, "id", annotation.id);
    writer.Key("rectangle");
    writer.StartObject();
    WriteNumber(writer, "xmin", annotation.box.left);
    WriteNumber(writer, "ymin", annotation.box.top);
    WriteNumber(writer, "xmax", annotation.box.right);
    WriteNumber(writer, "ymax", annotation.box.bottom);
    writer.EndObject();
    if (!annotation.label.empty())
        WriteText(writer, "label", annotation.label);
    if (!annotation.ring.empty())
        WriteRing(writer, "polygon", annotation.ring);
    writer.EndObject();
}

} // namespace

std::string MakeRecordJson(const Record& record)
{
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.SetIndent(' ', 4);
    writer.StartObject();
    WriteNumber(writer, "version", 1);
    WriteText(writer, "id", record.id);
    WriteText(writer, "creationDateTime", record.time);
    writer.Key("image");
    writer.StartObject();
    writer.Key("size");
    writer.StartObject();
    WriteNumber(writer, "width", record.width);
    WriteNumber(writer, "height", record.height);
    writer.EndObject();
    writer.EndObject();
    writer.Key("annotations");
    writer.StartArray();
    for (const Annotation& annotation : record.annotations)
        WriteAnnotation(writer, annotation);
    writer.EndArray();
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

} // namespace Orvik::Data
