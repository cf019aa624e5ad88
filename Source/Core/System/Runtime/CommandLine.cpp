#include "Core/System/Runtime/CommandLine.h"

#include "Core/System/Text/Unicode.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace Orvik::System::Runtime
{
namespace
{

/// The option's name without its dashes; empty if nothing follows them.
std::string_view StripPrefix(std::string_view argument)
{
    return argument.substr(argument.starts_with("--") ? 2 : 1);
}

} // namespace

void CommandLine::LoadArguments()
{
    std::vector<std::string> own = ReadArgumentsPlatform();
    std::move(own.begin(), own.end(), std::back_inserter(arguments));
}

void CommandLine::AddOption(std::uint64_t id, bool required, bool hasValue, std::string name, std::string shortName,
                            std::string description, std::string defaultValue)
{
    options.push_back({id, required, hasValue, std::move(name), std::move(shortName), std::move(description),
                       std::move(defaultValue)});
}

ParseResult CommandLine::Parse()
{
    for (std::size_t index = 1; index < arguments.size();)
    {
        const std::string& argument = arguments[index];
        if (argument.empty())
            return ParseResult::EmptyArgument;
        if (argument.front() != '-')
            return ParseResult::UnknownOption;
        const std::string_view name = StripPrefix(argument);
        if (name.empty())
            return ParseResult::EmptyArgument;
        const CommandLineOption* const option = FindOption(name);
        if (option == nullptr)
            return ParseResult::UnknownOption;

        // The first occurrence of an option wins: `emplace` leaves a value that is there.
        if (!option->hasValue)
        {
            values.emplace(option->id, std::string());
            index += 1;
            continue;
        }
        if (index + 1 >= arguments.size() || arguments[index + 1].empty() || arguments[index + 1].front() == '-')
            return ParseResult::MissingValue;
        values.emplace(option->id, arguments[index + 1]);
        index += 2;
    }
    ApplyDefaults();
    return ParseResult::Success;
}

bool CommandLine::HasRequiredOptions() const
{
    return std::all_of(options.begin(), options.end(),
                       [this](const CommandLineOption& option) { return !option.required || HasOption(option.id); });
}

bool CommandLine::HasOption(std::uint64_t id) const
{
    return values.contains(id);
}

const std::string& CommandLine::GetValue(std::uint64_t id) const
{
    static const std::string s_empty;
    const auto value = values.find(id);
    return value != values.end() ? value->second : s_empty;
}

bool CommandLine::GetBool(std::uint64_t id) const
{
    const auto value = values.find(id);
    if (value == values.end())
        return false;
    return value->second.empty() || value->second.front() == 't' || value->second.front() == 'T';
}

const CommandLineOption* CommandLine::FindOption(std::string_view name) const
{
    const auto option = std::find_if(options.begin(), options.end(),
                                     [name](const CommandLineOption& candidate)
                                     { return candidate.name == name || candidate.shortName == name; });
    return option != options.end() ? &*option : nullptr;
}

void CommandLine::ApplyDefaults()
{
    for (const CommandLineOption& option : options)
    {
        if (!option.defaultValue.empty())
            values.emplace(option.id, option.defaultValue);
    }
}

void AppendUsage(std::string& text, std::wstring_view applicationName, const CommandLine* commandLine)
{
    text += fmt::format("Usage: {} [option(s)]", Text::ToUtf8(applicationName));
    if (commandLine == nullptr || commandLine->options.empty())
        return;

    std::size_t nameWidth = 0;
    std::size_t shortNameWidth = 0;
    for (const CommandLineOption& option : commandLine->options)
    {
        nameWidth = std::max(nameWidth, option.name.size());
        shortNameWidth = std::max(shortNameWidth, option.shortName.size());
    }

    text += "\n\nOne or more of the below listed options can be used:\n";
    for (const CommandLineOption& option : commandLine->options)
    {
        const std::string_view value = option.defaultValue.empty() ? std::string_view("Empty") : option.defaultValue;
        text +=
            fmt::format("\t-{:<{}} -{:<{}}  {}. {}{}{}{}\n", option.name, nameWidth, option.shortName, shortNameWidth,
                        option.description, option.required ? "(required) " : "", option.hasValue ? "[Default: " : "",
                        option.hasValue ? value : std::string_view(), option.hasValue ? "]" : "");
    }
}

} // namespace Orvik::System::Runtime
