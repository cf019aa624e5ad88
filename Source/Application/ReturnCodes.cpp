#include "Application/ReturnCodes.h"

#include <algorithm>
#include <array>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

namespace Orvik::SnipBench
{
namespace
{

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

constexpr std::array<ReturnCodeRegistry::NamedCode, 6> s_codes = {{
    {0, ReturnCodeName::Success},
    {-1, ReturnCodeName::WrongParameters},
    {-2, ReturnCodeName::LoadFileFailed},
    {-3, ReturnCodeName::InitializeSystemsFailed},
    {-4, ReturnCodeName::CreateWindowFailed},
    {-5, ReturnCodeName::InitializeRendererFailed},
}};

void WriteText(Writer& writer, std::string_view text)
{
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

/// Writes the two members that every code has into the object being written.
void WriteNameAndCode(Writer& writer, const ReturnCode& code)
{
    writer.Key("name");
    WriteText(writer, code.name);
    writer.Key("code");
    writer.Int(code.code);
}

void WriteData(Writer& writer, const ReturnCodeRegistry::DataMap& data)
{
    struct ValueWriter
    {
        Writer& writer;
        void operator()(bool value) const { writer.Bool(value); }
        void operator()(std::int32_t value) const { writer.Int(value); }
        void operator()(const std::string& value) const { WriteText(writer, value); }
    };

    writer.Key("data");
    writer.StartObject();
    for (const auto& [key, value] : data)
    {
        writer.Key(key.c_str(), static_cast<rapidjson::SizeType>(key.size()));
        std::visit(ValueWriter{writer}, value);
    }
    writer.EndObject();
}

} // namespace

ReturnCodeRegistry& ReturnCodeRegistry::GetInstance()
{
    static ReturnCodeRegistry s_instance;
    return s_instance;
}

bool ReturnCodeRegistry::AddParameter(std::uint32_t id, std::string_view name)
{
    const bool exists = std::any_of(m_parameters.begin(), m_parameters.end(),
                                    [id](const ReturnCodeParameter& parameter) { return parameter.id == id; });
    if (exists)
        return false;
    m_parameters.push_back({id, name});
    return true;
}

bool ReturnCodeRegistry::AddCodes(std::uint32_t parameterId, std::span<const NamedCode> codes)
{
    const bool exists =
        std::any_of(m_parameters.begin(), m_parameters.end(),
                    [parameterId](const ReturnCodeParameter& parameter) { return parameter.id == parameterId; });
    if (!exists)
        return false;
    for (const NamedCode& code : codes)
        m_codes.push_back({parameterId, code.code, code.name});
    return true;
}

bool ReturnCodeRegistry::FindCode(std::uint32_t parameterId, std::string_view name, std::int32_t& code) const
{
    const auto found = std::find_if(m_codes.begin(), m_codes.end(),
                                    [parameterId, name](const ReturnCode& candidate)
                                    { return candidate.parameterId == parameterId && candidate.name == name; });
    if (found == m_codes.end())
        return false;
    code = found->code;
    return true;
}

bool ReturnCodeRegistry::WriteCode(std::uint32_t parameterId, std::int32_t code, std::string& text) const
{
    const auto found = std::find_if(m_codes.begin(), m_codes.end(),
                                    [parameterId, code](const ReturnCode& candidate)
                                    { return candidate.parameterId == parameterId && candidate.code == code; });
    if (found == m_codes.end())
        return false;

    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.SetIndent(' ', 4);
    writer.StartObject();
    WriteNameAndCode(writer, *found);
    if (DataMap data; m_dataProvider && m_dataProvider(parameterId, code, data))
        WriteData(writer, data);
    writer.EndObject();
    text.assign(buffer.GetString(), buffer.GetSize());
    return true;
}

bool ReturnCodeRegistry::WriteAll(std::uint32_t filter, std::string& text) const
{
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.SetIndent(' ', 4);
    writer.StartObject();
    writer.Key("parameters");
    writer.StartArray();
    for (const ReturnCodeParameter& parameter : m_parameters)
    {
        if (filter != 0 && (parameter.id & ~filter) != 0)
            continue;
        writer.StartObject();
        writer.Key("name");
        WriteText(writer, parameter.name);
        writer.Key("codes");
        writer.StartArray();
        for (const ReturnCode& code : m_codes)
        {
            if (code.parameterId != parameter.id)
                continue;
            writer.StartObject();
            WriteNameAndCode(writer, code);
            writer.EndObject();
        }
        writer.EndArray();
        writer.EndObject();
    }
    writer.EndArray();
    writer.EndObject();
    text.assign(buffer.GetString(), buffer.GetSize());
    return true;
}

void RegisterReturnCodes(ReturnCodeRegistry& registry)
{
    registry.AddParameter(0, "None");
    registry.AddCodes(0, s_codes);
}

} // namespace Orvik::SnipBench
