#include "Data/Records/RecordReader.h"

#include "Core/System/Runtime/JsonReader.h"
#include "Core/System/Text/Files.h"
#include "Core/System/Text/Paths.h"
#include "Data/Records/Names.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <rapidjson/document.h>
#include <system_error>
#include <unordered_set>

namespace Orvik::Data
{
namespace
{

using rapidjson::Value;
using System::Math::Rectangle;

/// More of a broken file doesn't help.
constexpr std::size_t s_maxFindings = 20;

std::string GetText(const Value& value)
{
    return {value.GetString(), value.GetStringLength()};
}

Ring ReadRing(const Value& corners)
{
    Ring ring;
    ring.reserve(corners.Size());
    for (const Value& corner : corners.GetArray())
        ring.push_back({corner["x"].GetInt(), corner["y"].GetInt()});
    return ring;
}

Rectangle ReadBox(const Value& rectangle)
{
    return {rectangle["xmin"].GetInt(), rectangle["ymin"].GetInt(), rectangle["xmax"].GetInt(),
            rectangle["ymax"].GetInt()};
}

/// A document that its schema takes, so that each member is there and of its type.
Record ReadMembers(const rapidjson::Document& document, Record::Kind kind)
{
    Record record;
    record.kind = kind;
    record.id = GetText(document["id"]);
    record.time = GetText(document["creationDateTime"]);
    const Value& image = document["image"];
    record.width = image["size"]["width"].GetInt();
    record.height = image["size"]["height"].GetInt();
    if (kind == Record::Kind::Snip)
    {
        const auto mask = image.FindMember("mask");
        if (mask != image.MemberEnd())
            record.annotations.push_back({record.id, {0, 0, record.width, record.height}, {}, ReadRing(mask->value)});
        return record;
    }
    for (const Value& item : document["annotations"].GetArray())
    {
        Annotation annotation{GetText(item["id"]), ReadBox(item["rectangle"]), {}, {}};
        if (item.HasMember("label"))
            annotation.label = GetText(item["label"]);
        if (item.HasMember("polygon"))
            annotation.ring = ReadRing(item["polygon"]);
        record.annotations.push_back(std::move(annotation));
    }
    return record;
}

/// What the schema can't say of one annotation.
void CheckAnnotation(const Record& record, const Annotation& annotation, std::vector<std::string>& findings)
{
    const Rectangle& box = annotation.box;
    const auto add = [&](std::string_view message)
    { findings.push_back(fmt::format("annotation {}: {}", annotation.id, message)); };
    if (box.left >= box.right || box.top >= box.bottom)
        add("the rectangle is empty");
    if (box.right > record.width || box.bottom > record.height)
        add(fmt::format("the rectangle reaches {}, {}; the picture has {} x {}", box.right, box.bottom, record.width,
                        record.height));
    if (!annotation.label.empty() && !IsLabel(annotation.label))
        add("the label isn't one line of 1 to 256 bytes, without blanks at its ends or control characters");
    if (annotation.ring.empty())
        return;
    if (annotation.ring.size() > s_maxCorners)
        add("the polygon has too many corners");
    if (annotation.ring.front() != annotation.ring.back())
        add("the polygon isn't closed: its last corner has to repeat the first");
    if (GetBounds(annotation.ring) != box)
        add("the polygon doesn't reach just as far as the rectangle");
}

void CheckMembers(const Record& record, std::vector<std::string>& findings)
{
    std::unordered_set<std::string_view> ids;
    for (const Annotation& annotation : record.annotations)
    {
        if (findings.size() >= s_maxFindings)
            return;
        CheckAnnotation(record, annotation, findings);
        if (!ids.insert(annotation.id).second)
            findings.push_back(fmt::format("annotation {}: the identifier is there twice", annotation.id));
    }
}

/// The library doesn't mind; a reader that takes the first and one that takes the last would differ.
bool HasDoubleMembers(const Value& value)
{
    if (value.IsArray())
        return std::any_of(value.Begin(), value.End(), &HasDoubleMembers);
    if (!value.IsObject())
        return false;
    std::unordered_set<std::string_view> names;
    return std::any_of(value.MemberBegin(), value.MemberEnd(),
                       [&names](const Value::Member& member)
                       {
                           const std::string_view name(member.name.GetString(), member.name.GetStringLength());
                           return !names.insert(name).second || HasDoubleMembers(member.value);
                       });
}

ReadRecord Fail(std::string finding)
{
    return {std::nullopt, {std::move(finding)}};
}

} // namespace

ReadRecord ParseRecord(const std::string& text, const RecordSchemas& schemas)
{
    if (text.find('\0') != std::string::npos)
        return Fail("isn't JSON: a zero byte");
    rapidjson::Document document;
    const System::Runtime::JsonParseResult parsed = System::Runtime::ParseJson(text, document);
    if (parsed.error != rapidjson::kParseErrorNone)
        return Fail(
            fmt::format("isn't JSON: byte {}: {}", parsed.offset, System::Runtime::GetParseErrorText(parsed.error)));
    if (!document.IsObject())
        return Fail("isn't a JSON object");
    if (!System::Runtime::IsShallow(document))
        return Fail("is nested too deep");
    if (!System::Runtime::HasWholeCharacters(document))
        return Fail("has a text that isn't UTF-8");
    if (HasDoubleMembers(document))
        return Fail("a member is there twice");
    const bool hasAnnotations = document.HasMember("annotations");
    const Record::Kind kind = hasAnnotations ? Record::Kind::Annotations : Record::Kind::Snip;
    if (hasAnnotations && document["annotations"].IsArray() && document["annotations"].Size() > s_maxAnnotations)
        return Fail(fmt::format("has more than {} annotations", s_maxAnnotations));
    std::string mismatch = schemas.FindMismatch(document, kind);
    if (!mismatch.empty())
        return Fail(std::move(mismatch));

    ReadRecord result;
    Record record = ReadMembers(document, kind);
    CheckMembers(record, result.findings);
    if (result.findings.empty())
        result.record = std::move(record);
    return result;
}

std::optional<std::string> ReadTextFile(const std::filesystem::path& path, std::size_t maxBytes)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    const System::Text::File file = System::Text::OpenFile(path, "rb");
    if (file == nullptr)
        return std::nullopt;
    std::string text;
    std::array<char, std::size_t{64}* 1024> block = {};
    std::size_t count = 0;
    while ((count = std::fread(block.data(), 1, block.size(), file.get())) > 0)
    {
        if (text.size() + count > maxBytes)
            return std::nullopt;
        text.append(block.data(), count);
    }
    return std::ferror(file.get()) == 0 ? std::optional<std::string>(std::move(text)) : std::nullopt;
}

ReadRecord LoadRecord(const std::filesystem::path& path, const RecordSchemas& schemas)
{
    const std::optional<std::string> text = ReadTextFile(path, s_maxRecordBytes);
    if (!text)
        return Fail("can't be read, or is larger than 16 MiB");
    ReadRecord result = ParseRecord(*text, schemas);
    if (result.record && System::Text::PathToUtf8(path.stem()) != result.record->id)
    {
        result.findings.push_back(fmt::format("the identifier in it is another one: {}", result.record->id));
        result.record.reset();
    }
    return result;
}

} // namespace Orvik::Data
