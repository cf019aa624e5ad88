#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvik::System::Runtime
{

/// One option that the application declares. All texts are UTF-8.
struct CommandLineOption
{
    std::uint64_t id = 0;
    bool required = false; ///< must have a value after parsing
    bool hasValue = false; ///< takes the next argument as its value
    std::string name;
    std::string shortName;
    std::string description;  ///< text of the usage line, without the closing full stop
    std::string defaultValue; ///< empty: no default
};

/// Callers only test for `Success`.
enum class ParseResult : std::uint8_t
{
    Success = 1,
    EmptyArgument,
    MissingValue,
    UnknownOption,
};

/// The process's arguments, the options that the application declares, and the values found. It prints nothing.
class CommandLine
{
public:
    /// Appends the process's own arguments, the program's path first.
    void LoadArguments();

    void AddOption(std::uint64_t id, bool required, bool hasValue, std::string name, std::string shortName,
                   std::string description, std::string defaultValue);

    /// Reads the arguments after the first as options. Stops at the first error: `values` then holds what was found so
    /// far, without defaults.
    [[nodiscard]] ParseResult Parse();

    /// True if every required option has a value.
    [[nodiscard]] bool HasRequiredOptions() const;

    [[nodiscard]] bool HasOption(std::uint64_t id) const;

    /// The value, or an empty text if the option is absent.
    [[nodiscard]] const std::string& GetValue(std::uint64_t id) const;

    /// False if the option is absent; true if it has no value or one that begins with "t" or "T".
    [[nodiscard]] bool GetBool(std::uint64_t id) const;

    std::vector<CommandLineOption> options; ///< in the order of declaration
    std::vector<std::string> arguments;     ///< all of them, the program's own path first, UTF-8
    std::unordered_map<std::uint64_t, std::string> values;

private:
    [[nodiscard]] const CommandLineOption* FindOption(std::string_view name) const;
    [[nodiscard]] static std::vector<std::string> ReadArgumentsPlatform();
    void ApplyDefaults();
};

/// Appends the text that `Help` prints: the usage line with the application's name and, if options are declared, a line
/// for each. `commandLine` may be null.
void AppendUsage(std::string& text, std::wstring_view applicationName, const CommandLine* commandLine);

} // namespace Orvik::System::Runtime
