// Texts that the program reads: its arguments, its configuration, identifiers.
#include "Application/Options.h"
#include "Core/System/Log/LoggerConfig.h"
#include "Core/System/Runtime/ApplicationConfigCache.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Core/System/Runtime/JsonReader.h"
#include "Core/System/Text/Guid.h"
#include "Tests/Fuzz/Targets.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <rapidjson/document.h>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Orvik::Fuzz
{
namespace
{

namespace fs = std::filesystem;

std::string ToText(Bytes input)
{
    return {input.begin(), input.end()};
}

/// The part before the next zero; the text goes on after it.
std::string TakeText(std::string_view& text)
{
    const std::size_t end = std::min(text.find('\0'), text.size());
    std::string part(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

bool IsOption(const System::Runtime::CommandLine& commandLine, std::uint64_t id)
{
    return std::any_of(commandLine.options.begin(), commandLine.options.end(),
                       [id](const System::Runtime::CommandLineOption& option) { return option.id == id; });
}

/// The working directory decides where the schema is found.
class WorkingDirectory
{
public:
    explicit WorkingDirectory(const fs::path& path) { fs::current_path(path); }
    ~WorkingDirectory() { fs::current_path(m_previous); }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

private:
    fs::path m_previous = fs::current_path();
};

void UseSchema(System::Runtime::ApplicationConfigCache& cache, const std::string& schema)
{
    static const Tests::TemporaryDirectory s_directory;
    static const fs::path s_folder = s_directory.GetPath() / "Resources" / "Schemas";
    fs::create_directories(s_folder);
    std::ofstream(s_folder / "Zentrov-Configuration-2501.json", std::ios::binary) << schema;
    const WorkingDirectory directory(s_directory.GetPath());
    Require(cache.Initialize(nullptr), "a cache of configurations can always be initialised");
}

} // namespace

/// Arguments that end in zeros.
void ReadOptions(Bytes input)
{
    using namespace System::Runtime;
    CommandLine commandLine;
    SnipBench::DeclareOptions(commandLine);
    commandLine.arguments = {"snipbench"};
    const std::string text = ToText(input);
    std::string_view rest = text;
    while (!rest.empty())
        commandLine.arguments.push_back(TakeText(rest));

    const ParseResult result = commandLine.Parse();
    for (const auto& [id, value] : commandLine.values)
        Require(IsOption(commandLine, id), "values belong to options");
    Require(result != ParseResult::Success || commandLine.HasRequiredOptions(), "no option is required");
    for (const CommandLineOption& option : commandLine.options)
        static_cast<void>(commandLine.GetBool(option.id));
    try
    {
        static_cast<void>(
            SnipBench::ParseDelay(commandLine.GetValue(static_cast<std::uint64_t>(SnipBench::Option::Delay))));
    }
    catch (const std::logic_error&) // no number, or one that is too large
    {
    }
    std::string usage;
    AppendUsage(usage, L"SnipBench", &commandLine);
    Require(!usage.empty(), "there is always a usage");
}

/// A document; after a zero a schema, else the program's own.
void ReadConfiguration(Bytes input)
{
    const std::string text = ToText(input);
    std::string_view rest = text;
    const std::string document = TakeText(rest);
    System::Runtime::ApplicationConfigCache cache;
    if (rest.empty())
        Require(cache.Initialize(nullptr), "a cache of configurations can always be initialised");
    else
        UseSchema(cache, std::string(rest));

    const bool isLoaded = cache.LoadFromString(document);
    Require(isLoaded || !cache.GetError().empty(), "a refused document has a reason");
    for (const char* const name : {"LogSystem", "SnipBench", "ThreadManager", ""})
    {
        const rapidjson::Value* const section = cache.FindSection(name);
        Require(section == nullptr || section->IsObject(), "a section is an object");
    }
}

void ReadLoggerConfig(Bytes input)
{
    rapidjson::Document document;
    const System::Runtime::JsonParseResult result = System::Runtime::ParseJson(ToText(input), document);
    if (result.error != rapidjson::kParseErrorNone || !document.IsObject())
        return;
    System::Log::LoggerConfig config;
    config.SetDefaults();
    const std::size_t severities = config.m_streamSeverities.size();
    static_cast<void>(config.Load(&document));
    Require(config.m_streamSeverities.size() == severities, "a section makes no severities");
}

/// An identifier's text is 36 or 38 characters, and comes back in upper case and in braces.
void ReadGuid(Bytes input)
{
    const std::string text = ToText(input);
    const System::GUID guid = System::ParseGuid(text);
    if (guid == System::GUID{})
        return;
    std::string wanted = text.size() == 36 ? "{" + text + "}" : text;
    std::transform(wanted.begin(), wanted.end(), wanted.begin(),
                   [](unsigned char character) { return static_cast<char>(std::toupper(character)); });
    Require(guid.ToString() == wanted, "an identifier comes back as it was read");
    Require(System::ParseGuid(guid.ToString()) == guid, "an identifier that was written is read again");
}

} // namespace Orvik::Fuzz
