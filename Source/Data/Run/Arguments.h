#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvik::Data
{

/// One option of a verb. All texts are literals.
struct OptionSpec
{
    const char* name;        ///< with its hyphens
    const char* value;       ///< the name of what follows it; null for an option without a value
    const char* description; ///< without a full stop
};

/// How a verb is called.
struct CallSpec
{
    const char* name;
    const char* operands;    ///< as the usage line shows them
    std::size_t minOperands; ///< at least one
    std::size_t maxOperands;
    const char* summary; ///< one line
    const char* details; ///< lines that the help of the verb adds; may be empty
    std::vector<OptionSpec> options;
};

/// What every verb takes beside its own.
[[nodiscard]] const std::vector<OptionSpec>& GetCommonOptions();

/// What a verb is called with.
class Arguments
{
public:
    std::vector<std::string> operands; ///< UTF-8

    [[nodiscard]] bool Has(std::string_view option) const;

    /// The value of an option, the last one if it is given twice; nothing if it isn't given.
    [[nodiscard]] std::optional<std::string> Get(std::string_view option) const;

    void Set(std::string option, std::string value) { m_options.emplace_back(std::move(option), std::move(value)); }

private:
    std::vector<std::pair<std::string, std::string>> m_options;
};

/// The arguments after the verb, or what is wrong with them. Options may stand between the operands; what follows "--"
/// are operands. `--option=value` is the same as `--option value`.
struct ParsedArguments
{
    Arguments arguments;
    std::string error; ///< empty if there is none
};
[[nodiscard]] ParsedArguments ParseArguments(const CallSpec& spec, const std::vector<std::string>& words);

/// The help of one verb, with a line feed at the end.
[[nodiscard]] std::string MakeHelp(const CallSpec& spec);

/// What `text` spells as a whole, if it is a whole number between the two.
[[nodiscard]] std::optional<std::int64_t> ParseInteger(std::string_view text, std::int64_t least, std::int64_t most);

/// An option whose value has to be a whole number; `fallback` if it isn't given. What is wrong goes to `error`.
[[nodiscard]] std::int64_t GetInteger(const Arguments& arguments, std::string_view option, std::int64_t fallback,
                                      std::int64_t least, std::int64_t most, std::string& error);

} // namespace Orvik::Data
