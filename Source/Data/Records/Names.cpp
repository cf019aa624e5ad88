#include "Data/Records/Names.h"

#include "Core/System/Text/Guid.h"
#include "Core/System/Text/Unicode.h"
#include "Core/System/Types/Hash.h"
#include "Data/Records/Record.h"

#include <algorithm>
#include <array>

namespace Orvik::Data
{
namespace
{

constexpr std::size_t s_maxNameBytes = 255;
constexpr std::size_t s_maxPathBytes = 4096;

bool IsUpperHex(char character)
{
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F');
}

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Whether the text looks like the pattern: "#" stands for what `isAny` takes, all else for itself.
bool IsLike(std::string_view text, std::string_view pattern, bool (*isAny)(char))
{
    return text.size() == pattern.size() &&
           std::equal(text.begin(), text.end(), pattern.begin(),
                      [isAny](char character, char wanted)
                      { return wanted == '#' ? isAny(character) : character == wanted; });
}

bool HasControls(std::string_view text)
{
    return std::any_of(text.begin(), text.end(),
                       [](char character)
                       { return static_cast<unsigned char>(character) < ' ' || character == '\x7F'; });
}

bool IsUtf8(std::string_view text)
{
    return System::Text::ToUtf8(System::Text::ToWide(text)) == text;
}

char ToUpper(char character)
{
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

/// Names that Windows takes for devices, whatever their extension.
bool IsDevice(std::string_view name)
{
    std::string stem(name.substr(0, name.find('.')));
    std::transform(stem.begin(), stem.end(), stem.begin(), &ToUpper);
    constexpr std::array<std::string_view, 6> devices = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
    if (std::find(devices.begin(), devices.end(), stem) != devices.end())
        return true;
    const bool isPort = stem.starts_with("COM") || stem.starts_with("LPT");
    return isPort && stem.size() == 4 && IsDigit(stem[3]);
}

/// The finalizer of a well-known 64-bit hash: each bit of the input changes half of those of the result.
constexpr std::uint64_t Mix(std::uint64_t value)
{
    value = (value ^ (value >> 33U)) * 0xFF51AFD7ED558CCD;
    value = (value ^ (value >> 33U)) * 0xC4CEB9FE1A85EC53;
    return value ^ (value >> 33U);
}

} // namespace

bool IsIdentifier(std::string_view text)
{
    constexpr std::size_t variant = 20;
    return IsLike(text, "{########-####-4###-####-############}", &IsUpperHex) &&
           std::string_view("89AB").find(text[variant]) != std::string_view::npos;
}

bool IsTime(std::string_view text)
{
    return IsLike(text, "####-##-##T##:##:##.#######Z", &IsDigit);
}

bool IsLabel(std::string_view text)
{
    return !text.empty() && text.size() <= s_maxLabelBytes && !HasControls(text) && text.front() != ' ' &&
           text.back() != ' ' && IsUtf8(text);
}

bool IsFileName(std::string_view text)
{
    if (text.empty() || text.size() > s_maxNameBytes || HasControls(text) || !IsUtf8(text))
        return false;
    // Windows leaves out dots and spaces at the end, so that another name is opened.
    return text.find_first_of("/\\:*?\"<>|") == std::string_view::npos && text.back() != '.' && text.back() != ' ' &&
           !IsDevice(text);
}

bool IsRelativePath(std::string_view text)
{
    if (text.size() > s_maxPathBytes)
        return false;
    while (true)
    {
        const std::size_t slash = text.find('/');
        if (!IsFileName(text.substr(0, slash)))
            return false;
        if (slash == std::string_view::npos)
            return true;
        text.remove_prefix(slash + 1);
    }
}

std::uint64_t MixText(std::string_view text, std::uint64_t seed)
{
    return Mix(System::Types::HashFnv1a(text) + Mix(seed + 0x9E3779B97F4A7C15));
}

std::string MakeIdentifier(std::string_view text)
{
    constexpr std::uint64_t versionMask = 0xF000;
    constexpr std::uint64_t version = 0x4000;
    constexpr std::uint64_t variantMask = 0xC000'0000'0000'0000;
    constexpr std::uint64_t variant = 0x8000'0000'0000'0000;
    // The second half comes from another text too: two texts of one hash still differ.
    const std::string reversed(text.rbegin(), text.rend());
    const System::GUID id{(MixText(text, 1) & ~versionMask) | version, (MixText(reversed, 2) & ~variantMask) | variant};
    return id.ToString();
}

} // namespace Orvik::Data
