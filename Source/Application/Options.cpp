#include "Application/Options.h"

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string>

namespace Orvik::SnipBench
{
namespace
{

struct OptionRow
{
    Option id;
    bool hasValue;
    const char* name;
    const char* shortName;
    const char* defaultValue;
    const char* description;
};

constexpr OptionRow s_options[] = {
    {Option::OutDirectory, true, "OutDirectory", "o", "", "Sets the snip output directory"},
    {Option::OutFileType, true, "OutFileType", "t", "png", "Defines the output file format"},
    {Option::OneShot, true, "OneShot", "s", "False", "Stops snipping after first snip"},
    {Option::KeepMask, true, "KeepMask", "k", "False", "If true, pixels outside selection mask are not cleared"},
    {Option::Delay, true, "Delay", "d", "0", "Delay in ms before screenshot is taken"},
    {Option::Annotate, true, "Annotate", "a", "False", "Enables annotation mode"},
    {Option::File, true, "File", "f", "", "Load the display capture from a file"},
    {Option::ShowReturnCodes, false, "ShowReturnCodes", "src", "", "Prints the return codes as a JSON formatted list"},
    {Option::ConfigFile, true, "ConfigFile", "c", "", "Loads the configuration from specified file"},
    {Option::ConfigJson, true, "ConfigJson", "cj", "", "Loads the specified configuration"},
    {Option::Permission, false, "Permission", "p", "", "Request necessary permission and exits"},
    {Option::Help, false, "Help", "h", "", "Prints this help"},
};

} // namespace

void DeclareOptions(System::Runtime::CommandLine& commandLine)
{
    for (const OptionRow& row : s_options)
    {
        commandLine.AddOption(static_cast<std::uint64_t>(row.id), false, row.hasValue, row.name, row.shortName,
                              row.description, row.defaultValue);
    }
}

std::int32_t ParseDelay(const std::string& text)
{
    char* end = nullptr;
    errno = 0;
    const long long value = std::strtoll(text.c_str(), &end, 10);
    if (end == text.c_str())
        throw std::invalid_argument("invalid stol argument");
    if (errno == ERANGE || value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max())
    {
        throw std::out_of_range("stol argument out of range");
    }
    return static_cast<std::int32_t>(value);
}

} // namespace Orvik::SnipBench
