#include "Core/System/Runtime/ApplicationConfigCache.h"

#include "Core/System/Error/SystemError.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Runtime/DirectoryCache.h"
#include "Core/System/Runtime/ExecutablePath.h"
#include "Core/System/Runtime/JsonHolders.h"
#include "Core/System/Runtime/JsonReader.h"
#include "Core/System/Text/Paths.h"

#include <algorithm>
#include <fmt/format.h>
#include <fstream>
#include <new>
#include <system_error>

namespace Orvik::System::Runtime
{
namespace
{

using Log::MessageTypeID;

constexpr const char* s_schemaName = "Zentrov-Configuration-2501.json";

/// Opens a file for reading. Refuses directories, which some platforms open but can't read.
std::ifstream OpenFile(const std::filesystem::path& path)
{
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored) ? std::ifstream() : std::ifstream(path);
}

std::unique_ptr<JsonDocument> MakeDocument()
{
    auto holder = std::make_unique<JsonDocument>();
    holder->document.reset(new (std::nothrow) rapidjson::Document);
    return holder;
}

void WarnOfMissingSchema()
{
    Log::Write(Log::s_system, MessageTypeID::Warning,
               "No configuration schema loaded, configuration might be invalid.");
}

/// The first member with exactly that name, if it is an object; otherwise null. `object` may be any value.
const rapidjson::Value* FindObject(const rapidjson::Value& object, std::string_view name)
{
    if (!object.IsObject())
        return nullptr;
    const auto member =
        std::find_if(object.MemberBegin(), object.MemberEnd(),
                     [name](const auto& candidate) {
                         return std::string_view(candidate.name.GetString(), candidate.name.GetStringLength()) == name;
                     });
    return member != object.MemberEnd() && member->value.IsObject() ? &member->value : nullptr;
}

} // namespace

ApplicationConfigCache::ApplicationConfigCache() = default;
ApplicationConfigCache::~ApplicationConfigCache() = default;

bool ApplicationConfigCache::Initialize(const char* executablePath)
{
    const std::string& home = DirectoryCache::GetInstance().GetUserProfile().value;
    m_dataDirectory = Text::Join(Text::PathFromUtf8(home), ".orvik");

    const std::filesystem::path path = FindExecutablePathPlatform();
    if (path.empty())
    {
        Log::Write(Log::s_system, MessageTypeID::Error, "Failed to retrieve module file name: '",
                   Error::FormatLastError(), "'.");
    }
    m_executableDirectory = path.parent_path();
    if (m_executableDirectory.empty() && executablePath != nullptr)
        m_executableDirectory = Text::PathFromUtf8(executablePath).parent_path();

    std::filesystem::path schemaPath;
    (void)FindSchemaFile(s_schemaName, schemaPath);
    LoadSchema(schemaPath);
    return true;
}

bool ApplicationConfigCache::FindSchemaFile(const std::string& name, std::filesystem::path& path) const
{
    const std::filesystem::path candidate =
        ResolveResource(m_executableDirectory, {"Resources", "Schemas"}, Text::PathFromUtf8(name));
    if (!Text::Exists(candidate))
        return false;
    path = candidate;
    return true;
}

void ApplicationConfigCache::LoadSchema(const std::filesystem::path& path)
{
    const std::string pathText = Text::PathToUtf8(path);
    try
    {
        std::ifstream stream = OpenFile(path);
        if (!stream.is_open())
        {
            Log::Write(Log::s_system, MessageTypeID::Warning, "Can't open schema file: '", pathText, "'.");
            return;
        }
        rapidjson::Document document;
        const JsonParseResult result = ParseJson(stream, document);
        if (result.error != rapidjson::kParseErrorNone)
        {
            Log::Write(Log::s_system, MessageTypeID::Warning, "Failed to parse schema JSON at ", result.offset, ": '",
                       GetParseErrorText(result.error), "'.");
            return;
        }
        if (!IsCompilable(document))
            throw std::invalid_argument("The schema can't be compiled.");
        auto schema = std::make_unique<JsonSchema>();
        schema->schema = std::make_unique<rapidjson::SchemaDocument>(document);
        m_schema = std::move(schema);
    }
    catch (const std::exception&)
    {
        Log::Write(Log::s_system, MessageTypeID::Warning, "Failed to load configuration schema file: '", pathText,
                   "'.");
    }
}

bool ApplicationConfigCache::LoadFromString(const std::string& json)
{
    Log::Write(Log::s_system, MessageTypeID::Always, "Loading configuration string '", json, "'.");
    m_document = ReadDocument(json);
    return m_document != nullptr;
}

std::unique_ptr<JsonDocument> ApplicationConfigCache::ReadDocument(const std::string& json)
{
    std::unique_ptr<JsonDocument> holder = MakeDocument();
    if (holder->document == nullptr)
    {
        m_error = "Failed to create JSON document.";
        return nullptr;
    }
    const JsonParseResult result = ParseJson(json, *holder->document);
    if (result.error != rapidjson::kParseErrorNone)
    {
        m_error = "Failed to parse configuration JSON at " + std::to_string(result.offset) + ": '" +
                  GetParseErrorText(result.error) + "'.";
        return nullptr;
    }
    if (m_schema == nullptr)
        WarnOfMissingSchema();
    else if (!ValidateDocument(m_schema.get(), holder.get(), m_error))
        return nullptr;
    return holder;
}

bool ApplicationConfigCache::LoadFromFile(const std::filesystem::path& file)
{
    Log::Write(Log::s_system, MessageTypeID::Always, "Loading configuration file from '", file, "'.");
    std::ifstream stream = OpenFile(file);
    if (!stream.is_open())
        return FailLoading(fmt::format("Failed to open configuration '{}'.", Text::PathToUtf8(file)));

    m_document = MakeDocument();
    if (m_document->document == nullptr)
        return FailLoading("Failed to create JSON document for validation.");
    const JsonParseResult result = ParseJson(stream, *m_document->document);
    if (result.error != rapidjson::kParseErrorNone)
    {
        return FailLoading(fmt::format("Failed to parse configuration JSON at '{}': {}", result.offset,
                                       GetParseErrorText(result.error)));
    }
    if (m_schema == nullptr)
    {
        WarnOfMissingSchema();
        return true;
    }
    if (ValidateDocument(m_schema.get(), m_document.get(), m_error))
        return true;
    m_document = nullptr;
    return false;
}

bool ApplicationConfigCache::FailLoading(std::string error)
{
    m_error = std::move(error);
    Log::Write(Log::s_system, MessageTypeID::Error, m_error);
    return false;
}

bool ApplicationConfigCache::ValidateDocument(const JsonSchema* schema, const JsonDocument* document,
                                              std::string& error)
{
    if (document == nullptr || document->document == nullptr)
    {
        error = "The schema JSON needs to be valid";
        return false;
    }
    if (schema == nullptr || schema->schema == nullptr)
    {
        error = "No schema was loaded and compiled";
        return false;
    }
    rapidjson::SchemaValidator validator(*schema->schema);
    // Walking through the document recurses.
    if (IsShallow(*document->document) && HasWholeCharacters(*document->document) &&
        document->document->Accept(validator) && validator.IsValid())
        return true;
    error = "Failed to validate against schema";
    if (const char* const keyword = validator.GetInvalidSchemaKeyword(); keyword != nullptr)
        error += " at keyword: " + std::string(keyword);
    return false;
}

IConfig* ApplicationConfigCache::GetConfig(std::uint32_t typeId) const
{
    const auto record = std::ranges::find(m_configs, typeId, &Record::typeId);
    return record != m_configs.end() ? record->config.get() : nullptr;
}

bool ApplicationConfigCache::InitializeConfig(IConfig* config, std::string_view name)
{
    config->SetDefaults();
    const rapidjson::Value* const section = FindSection(name);
    return section == nullptr || config->Load(section);
}

const rapidjson::Value* ApplicationConfigCache::FindSection(std::string_view name) const
{
    if (m_document == nullptr || m_document->document == nullptr)
        return nullptr;
    const rapidjson::Value* const configuration = FindObject(*m_document->document, "configuration");
    return configuration != nullptr ? FindObject(*configuration, name) : nullptr;
}

} // namespace Orvik::System::Runtime
