#include "Core/System/Runtime/JsonReader.h"

#include "Core/System/Runtime/JsonPattern.h"

#include <algorithm>
#include <array>
#include <istream>
#include <rapidjson/istreamwrapper.h>
#include <rapidjson/pointer.h>

namespace Orvik::System::Runtime
{
namespace
{

/// The most levels of nesting that functions here recurse through; a configuration has four.
constexpr int s_maxDepth = 512;
/// The most references to references that are followed in a schema.
constexpr int s_maxReferences = 64;

constexpr std::array<const char*, 18> s_parseErrorTexts = {
    "No error.",
    "The document is empty.",
    "The document root must not be followed by other values.",
    "Invalid value.",
    "Missing a name for object member.",
    "Missing a colon after a name of object member.",
    "Missing a comma or '}' after an object member.",
    "Missing a comma or ']' after an array element.",
    "Incorrect hex digit after \\u escape in string.",
    "The surrogate pair in string is invalid.",
    "Invalid escape character in string.",
    "Missing a closing quotation mark in string.",
    "Invalid encoding in string.",
    "Number too big to be stored in double.",
    "Miss fraction part in number.",
    "Miss exponent in number.",
    "Terminate parsing due to Handler error.",
    "Unspecific syntax error.",
};

template <typename Stream>
JsonParseResult Parse(Stream& stream, rapidjson::Document& document)
{
    document.ParseStream<rapidjson::kParseIterativeFlag>(stream);
    JsonParseResult result{document.GetParseError(), document.GetErrorOffset()};
    // The one error that the iterative parser reports differently: if a document begins with a character that no value
    // begins with, it calls the document empty.
    if (result.error == rapidjson::kParseErrorDocumentEmpty && stream.Peek() != '\0')
        result.error = rapidjson::kParseErrorValueInvalid;
    return result;
}

/// Recurses `levels` deep at most.
bool IsWithinDepth(const rapidjson::Value& value, int levels)
{
    const auto isWithin = [levels](const rapidjson::Value& child) { return IsWithinDepth(child, levels - 1); };
    if (value.IsArray())
        return levels > 0 && std::all_of(value.Begin(), value.End(), isWithin);
    if (value.IsObject())
    {
        return levels > 0 && std::all_of(value.MemberBegin(), value.MemberEnd(),
                                         [&isWithin](const auto& member) { return isWithin(member.value); });
    }
    return true;
}

std::string_view GetText(const rapidjson::Value& text)
{
    return {text.GetString(), text.GetStringLength()};
}

/// The library expects, without checking, that the keyword "patternProperties" is an object, that "dependencies" lists
/// names, and that its engine can be trusted with each pattern.
bool IsKeywordSound(const rapidjson::Value::Member& member)
{
    const std::string_view name = GetText(member.name);
    if (name == "pattern")
        return !member.value.IsString() || IsPatternSound(GetText(member.value));
    if (name == "patternProperties")
    {
        return member.value.IsObject() &&
               std::all_of(member.value.MemberBegin(), member.value.MemberEnd(),
                           [](const auto& property) { return IsPatternSound(GetText(property.name)); });
    }
    if (name != "dependencies" || !member.value.IsObject())
        return true;
    const auto isName = [](const rapidjson::Value& value) { return value.IsString(); };
    return std::all_of(member.value.MemberBegin(), member.value.MemberEnd(),
                       [&isName](const auto& dependency) {
                           return !dependency.value.IsArray() ||
                                  std::all_of(dependency.value.Begin(), dependency.value.End(), isName);
                       });
}

/// Whether the references that begin with `object` end at something other than a reference, or nowhere.
bool DoReferencesEnd(const rapidjson::Value& object, const rapidjson::Document& schema)
{
    const rapidjson::Value* target = &object;
    for (int step = 0; step < s_maxReferences; ++step)
    {
        if (!target->IsObject())
            return true;
        const auto reference = target->FindMember("$ref");
        if (reference == target->MemberEnd() || !reference->value.IsString())
            return true;
        const std::string text(reference->value.GetString(), reference->value.GetStringLength());
        const rapidjson::Pointer pointer(text.c_str(), text.size());
        if (!text.starts_with('#') || !pointer.IsValid())
            return true;
        target = pointer.Get(schema);
        if (target == nullptr)
            return true;
    }
    return false;
}

/// Whether the last character is there whole. By the first byte of one the library reads on, past the end.
bool EndsWhole(const rapidjson::Value& text)
{
    const std::string_view bytes = GetText(text);
    const std::size_t longest = std::min<std::size_t>(bytes.size(), 3);
    for (std::size_t left = 1; left <= longest; ++left)
    {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - left]);
        const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        if (length > left && byte < 0xF5) // from there on no character begins with it
            return false;
    }
    return true;
}

/// `value` must be shallow.
bool IsPartCompilable(const rapidjson::Value& value, const rapidjson::Document& schema)
{
    const auto isCompilable = [&schema](const rapidjson::Value& child) { return IsPartCompilable(child, schema); };
    if (value.IsArray())
        return std::all_of(value.Begin(), value.End(), isCompilable);
    if (!value.IsObject())
        return true;
    return DoReferencesEnd(value, schema) &&
           std::all_of(value.MemberBegin(), value.MemberEnd(),
                       [&isCompilable](const rapidjson::Value::Member& member)
                       { return IsKeywordSound(member) && isCompilable(member.value); });
}

} // namespace

JsonParseResult ParseJson(const std::string& text, rapidjson::Document& document)
{
    rapidjson::StringStream stream(text.c_str());
    return Parse(stream, document);
}

JsonParseResult ParseJson(std::istream& stream, rapidjson::Document& document)
{
    rapidjson::IStreamWrapper wrapper(stream);
    return Parse(wrapper, document);
}

const char* GetParseErrorText(rapidjson::ParseErrorCode error) noexcept
{
    const auto index = static_cast<std::size_t>(error);
    return index < s_parseErrorTexts.size() ? s_parseErrorTexts[index] : "Unknown error.";
}

bool IsShallow(const rapidjson::Value& value)
{
    return IsWithinDepth(value, s_maxDepth);
}

bool HasWholeCharacters(const rapidjson::Value& value)
{
    if (value.IsString())
        return EndsWhole(value);
    if (value.IsArray())
        return std::all_of(value.Begin(), value.End(), &HasWholeCharacters);
    return !value.IsObject() ||
           std::all_of(value.MemberBegin(), value.MemberEnd(),
                       [](const auto& member) { return EndsWhole(member.name) && HasWholeCharacters(member.value); });
}

bool IsCompilable(const rapidjson::Document& schema)
{
    return IsShallow(schema) && IsPartCompilable(schema, schema);
}

} // namespace Orvik::System::Runtime
