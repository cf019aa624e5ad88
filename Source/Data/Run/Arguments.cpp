#include "Data/Run/Arguments.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>

namespace Orvik::Data
{
namespace
{

const OptionSpec* FindOption(const CallSpec& spec, std::string_view name)
{
    for (const std::vector<OptionSpec>* options : {&spec.options, &GetCommonOptions()})
        for (const OptionSpec& option : *options)
            if (option.name == name)
                return &option;
    return nullptr;
}

/// Takes the option at `index`, and moves that on to its value. What is wrong, or nothing.
std::string TakeOption(const CallSpec& spec, const std::vector<std::string>& words, std::size_t& index,
                       Arguments& arguments)
{
    const std::string& word = words[index];
    const std::size_t sign = word.find('=');
    const std::string name = word.substr(0, sign);
    const OptionSpec* const option = FindOption(spec, name);
    if (option == nullptr)
        return fmt::format("unknown option {}", name);
    if (option->value == nullptr)
    {
        if (sign != std::string::npos)
            return fmt::format("{} takes no value", name);
        arguments.Set(name, {});
        return {};
    }
    if (sign != std::string::npos)
    {
        arguments.Set(name, word.substr(sign + 1));
        return {};
    }
    if (++index == words.size())
        return fmt::format("{} needs {}", name, option->value);
    arguments.Set(name, words[index]);
    return {};
}

std::string MakeOptionLine(const OptionSpec& option)
{
    std::string head = option.name;
    if (option.value != nullptr)
        head += fmt::format(" {}", option.value);
    return fmt::format("  {:<22}{}.\n", head, option.description);
}

} // namespace

const std::vector<OptionSpec>& GetCommonOptions()
{
    static const std::vector<OptionSpec> s_options = {
        {"--json", nullptr, "Print the result as one JSON object"},
        {"--help", nullptr, "Print this text; so does -h"},
    };
    return s_options;
}

bool Arguments::Has(std::string_view option) const
{
    return Get(option).has_value();
}

std::optional<std::string> Arguments::Get(std::string_view option) const
{
    const auto found = std::find_if(m_options.rbegin(), m_options.rend(),
                                    [option](const auto& entry) { return entry.first == option; });
    return found == m_options.rend() ? std::nullopt : std::optional<std::string>(found->second);
}

ParsedArguments ParseArguments(const CallSpec& spec, const std::vector<std::string>& words)
{
    ParsedArguments parsed;
    bool areOptionsOver = false;
    const auto isOption = [](const std::string& word) { return word.size() > 1 && word.front() == '-'; };
    for (std::size_t index = 0; index < words.size(); ++index)
    {
        const std::string& word = words[index];
        if (!areOptionsOver && word == "--")
            areOptionsOver = true;
        else if (!areOptionsOver && word == "-h")
            parsed.arguments.Set("--help", {});
        else if (areOptionsOver || !isOption(word))
            parsed.arguments.operands.push_back(word);
        else
            parsed.error = TakeOption(spec, words, index, parsed.arguments);
        if (!parsed.error.empty())
            return parsed;
    }
    const std::size_t count = parsed.arguments.operands.size();
    const auto isEmpty = [](const std::string& operand) { return operand.empty(); };
    if (parsed.arguments.Has("--help"))
        return parsed;
    if (count < spec.minOperands || count > spec.maxOperands)
        parsed.error = fmt::format("expected {}", spec.operands);
    else if (std::any_of(parsed.arguments.operands.begin(), parsed.arguments.operands.end(), isEmpty))
        parsed.error = "an empty name";
    return parsed;
}

std::string MakeHelp(const CallSpec& spec)
{
    std::string text =
        fmt::format("Usage: snipbench-data {} [options] {}\n\n{}.\n", spec.name, spec.operands, spec.summary);
    if (*spec.details != '\0')
        text += fmt::format("\n{}", spec.details);
    text += "\nOptions:\n";
    for (const std::vector<OptionSpec>* options : {&spec.options, &GetCommonOptions()})
        for (const OptionSpec& option : *options)
            text += MakeOptionLine(option);
    return text;
}

std::optional<std::int64_t> ParseInteger(std::string_view text, std::int64_t least, std::int64_t most)
{
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < least || number > most)
        return std::nullopt;
    return number;
}

std::int64_t GetInteger(const Arguments& arguments, std::string_view option, std::int64_t fallback, std::int64_t least,
                        std::int64_t most, std::string& error)
{
    const std::optional<std::string> text = arguments.Get(option);
    if (!text)
        return fallback;
    const std::optional<std::int64_t> number = ParseInteger(*text, least, most);
    if (!number)
        error = fmt::format("{} takes a whole number from {} to {}", option, least, most);
    return number.value_or(fallback);
}

} // namespace Orvik::Data
