#include "Core/System/Log/LoggerConfig.h"

#include "Core/System/Error/Assertion.h"
#include "Core/System/Text/Paths.h"
#include "Core/System/Text/Unicode.h"

#include <algorithm>
#include <rapidjson/document.h>
#include <utility>

namespace Orvik::System::Log
{
namespace
{

std::string_view GetText(const rapidjson::Value& value)
{
    return {value.GetString(), value.GetStringLength()};
}

/// The member's value, or null. `object` has to be an object.
const rapidjson::Value* FindMember(const rapidjson::Value& object, const char* name)
{
    const auto member = object.FindMember(name);
    return member != object.MemberEnd() ? &member->value : nullptr;
}

/// The bit of the stream with exactly that name; 0 for none.
std::uint32_t FindStream(std::string_view name)
{
    for (std::uint32_t index = 0; index < StreamCount; ++index)
    {
        const std::uint32_t stream = std::uint32_t{1} << index;
        if (GetStreamName(stream) == name)
            return stream;
    }
    return 0;
}

/// The streams that a rule applies to; 0 for none. A number under "id" overrides the rule's name.
std::uint32_t GetMask(std::string_view name, const rapidjson::Value& rule)
{
    const rapidjson::Value* const id = FindMember(rule, "id");
    if (id != nullptr && id->IsUint())
        return (id->GetUint() & AllStreams) != 0 ? id->GetUint() : 0;
    return name == "All" ? AllStreams : FindStream(name);
}

/// The index of the severity with exactly that name; Warning for anything else.
std::size_t GetSeverity(const rapidjson::Value& value)
{
    constexpr std::size_t fallback = static_cast<std::size_t>(MessageTypeID::Warning);
    if (!value.IsString())
        return fallback;
    const auto name = std::ranges::find(messageTypeIDNames, GetText(value));
    return name != messageTypeIDNames.end() ? static_cast<std::size_t>(name - messageTypeIDNames.begin()) : fallback;
}

} // namespace

LoggerConfig::LoggerConfig(std::filesystem::path dataDirectory, const std::wstring& applicationName)
    : m_dataDirectory(std::move(dataDirectory)), m_applicationName(Text::ToUtf8(applicationName))
{
}

void LoggerConfig::SetDefaults()
{
    m_logDirectory = Text::Join(m_dataDirectory, "Logs");
    m_logFileName = m_applicationName;
    m_streamSeverities.resize(m_streamSeverities.size() + messageTypeIDNames.size());
    m_streamSeverities[static_cast<std::size_t>(MessageTypeID::Info)] = AllStreams;
}

bool LoggerConfig::Load(const rapidjson::Value* section)
{
    if (section == nullptr || !section->IsObject())
        return false;
    const rapidjson::Value* const streams = FindMember(*section, "streams");
    if (streams == nullptr || !streams->IsObject())
        return false;

    for (const auto& [name, rule] : streams->GetObject())
    {
        const rapidjson::Value* const severity = rule.IsObject() ? FindMember(rule, "severity") : nullptr;
        if (severity == nullptr)
            continue;
        const std::uint32_t mask = GetMask(GetText(name), rule);
        if (mask == 0)
            continue;
        ORVIK_ASSERT(m_streamSeverities.size() == messageTypeIDNames.size(),
                     "Stream severities not properly initialized.");
        ApplyRule(mask, GetSeverity(*severity));
    }
    return true;
}

void LoggerConfig::ApplyRule(std::uint32_t mask, std::size_t severity)
{
    for (std::size_t index = 0; index < m_streamSeverities.size(); ++index)
    {
        std::uint32_t& streams = m_streamSeverities[index];
        if (index == severity)
            streams |= mask;
        else if ((streams & mask) != 0)
            streams ^= mask; // inverts: a rule of several streams works as expected only if it comes first
    }
}

} // namespace Orvik::System::Log
