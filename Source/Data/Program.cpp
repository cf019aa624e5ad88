#include "Data/Program.h"

#include "Data/Verbs/Verb.h"

#include <algorithm>
#include <exception>
#include <fmt/format.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace Orvik::Data
{
namespace
{

constexpr const char* s_codes = "Exit codes:\n"
                                "  0  all is done, and nothing was found\n"
                                "  1  something was found, or skipped and named; all else is done\n"
                                "  2  wrong arguments; nothing was done\n"
                                "  3  what the whole work needs can't be read or made\n";

void Print(std::FILE* stream, const std::string& text)
{
    (void)std::fwrite(text.data(), 1, text.size(), stream);
}

std::string MakeOverview()
{
    std::string text = "Usage: snipbench-data VERB [options] ...\n\n"
                       "Checks, shows and converts what SnipBench has written. Needs no display.\n\nVerbs:\n";
    for (const Verb& verb : GetVerbs())
        text += fmt::format("  {:<8}{}.\n", verb.spec.name, verb.spec.summary);
    text += "\nsnipbench-data VERB --help says more of each.\n\n";
    return text + s_codes;
}

void WriteOptions(rapidjson::Writer<rapidjson::StringBuffer>& writer, const std::vector<OptionSpec>& options)
{
    writer.StartArray();
    for (const OptionSpec& option : options)
    {
        writer.StartObject();
        writer.Key("name");
        writer.String(option.name);
        if (option.value != nullptr)
        {
            writer.Key("value");
            writer.String(option.value);
        }
        writer.Key("description");
        writer.String(option.description);
        writer.EndObject();
    }
    writer.EndArray();
}

/// The table of verbs for programs: manual page and completions are made from it.
std::string MakeJsonOverview()
{
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    writer.Key("verbs");
    writer.StartArray();
    for (const Verb& verb : GetVerbs())
    {
        writer.StartObject();
        writer.Key("name");
        writer.String(verb.spec.name);
        writer.Key("operands");
        writer.String(verb.spec.operands);
        writer.Key("summary");
        writer.String(verb.spec.summary);
        writer.Key("details");
        writer.String(verb.spec.details);
        writer.Key("options");
        WriteOptions(writer, verb.spec.options);
        writer.EndObject();
    }
    writer.EndArray();
    writer.Key("options");
    WriteOptions(writer, GetCommonOptions());
    writer.EndObject();
    return buffer.GetString();
}

ExitCode Refuse(const Report::Streams& streams, std::string_view verb, std::string_view error)
{
    Print(streams.findings, fmt::format("snipbench-data: {}\nTry: snipbench-data {}--help\n", MakeShowable(error),
                                        verb.empty() ? "" : fmt::format("{} ", verb)));
    return ExitCode::WrongCall;
}

ExitCode RunVerb(const Verb& verb, const std::vector<std::string>& words, const Report::Streams& streams)
{
    const ParsedArguments parsed = ParseArguments(verb.spec, words);
    if (!parsed.error.empty())
        return Refuse(streams, verb.spec.name, parsed.error);
    if (parsed.arguments.Has("--help"))
    {
        Print(streams.output, MakeHelp(verb.spec) + "\n" + s_codes);
        return ExitCode::Done;
    }
    Report::Streams own = streams;
    const std::string_view name = verb.spec.name;
    // Findings are what this verb is asked for.
    if (name == "check")
        own.findings = streams.output;
    const bool isJson = parsed.arguments.Has("--json") || name == "find";
    Report report(name, isJson, own);
    std::string error;
    try
    {
        error = verb.run(parsed.arguments, report);
    }
    catch (const std::exception& failure) // no memory, say
    {
        report.Fail({}, failure.what());
    }
    if (!error.empty())
        return Refuse(streams, verb.spec.name, error);
    if (!report.Finish())
        return ExitCode::CannotRun;
    return report.GetExitCode();
}

} // namespace

const std::vector<Verb>& GetVerbs()
{
    static const std::vector<Verb> s_verbs = {GetCheckVerb(),  GetCropVerb(),  GetMaskVerb(),
                                              GetDrawVerb(),   GetSheetVerb(), GetExportVerb(),
                                              GetImportVerb(), GetStatsVerb(), GetFindVerb()};
    return s_verbs;
}

ExitCode RunProgram(const std::vector<std::string>& words, Report::Streams streams)
{
    if (words.empty())
    {
        Print(streams.findings, MakeOverview());
        return ExitCode::WrongCall;
    }
    if (words[0] == "--help" || words[0] == "-h" || words[0] == "help")
    {
        const bool isJson = std::find(words.begin(), words.end(), "--json") != words.end();
        Print(streams.output, isJson ? MakeJsonOverview() + "\n" : MakeOverview());
        return ExitCode::Done;
    }
    const auto verb = std::find_if(GetVerbs().begin(), GetVerbs().end(),
                                   [&words](const Verb& candidate) { return candidate.spec.name == words[0]; });
    if (verb == GetVerbs().end())
        return Refuse(streams, {}, fmt::format("unknown verb {}", words[0]));
    return RunVerb(*verb, {words.begin() + 1, words.end()}, streams);
}

} // namespace Orvik::Data
