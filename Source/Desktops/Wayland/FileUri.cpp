#include "Desktops/Wayland/FileUri.h"

#include <charconv>
#include <string>
#include <system_error>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// The byte that two hexadecimal digits give; nothing for other characters, and for one that no path has.
std::optional<char> ParseByte(std::string_view digits)
{
    constexpr int base = 16;
    constexpr std::size_t length = 2;
    unsigned char byte = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, base);
    if (digits.size() != length || error != std::errc() || end != digits.data() + length || byte == 0)
        return std::nullopt;
    return static_cast<char>(byte);
}

} // namespace

std::optional<std::filesystem::path> FindFileOfUri(std::string_view uri)
{
    constexpr std::string_view scheme = "file://";
    constexpr std::string_view thisMachine = "localhost";
    if (!uri.starts_with(scheme))
        return std::nullopt;
    uri.remove_prefix(scheme.size());
    if (uri.starts_with(thisMachine))
        uri.remove_prefix(thisMachine.size());
    if (!uri.starts_with('/'))
        return std::nullopt;
    std::string path;
    for (std::size_t place = 0; place < uri.size(); ++place)
    {
        if (uri[place] == '?' || uri[place] == '#' || uri[place] == '\0')
            return std::nullopt;
        if (uri[place] != '%')
        {
            path += uri[place];
            continue;
        }
        const std::optional<char> byte = ParseByte(uri.substr(place + 1, 2));
        if (!byte)
            return std::nullopt;
        path += *byte;
        place += 2;
    }
    return path;
}

} // namespace Orvik::Desktops::Wayland
