#include "Desktops/Wayland/BusDictionary.h"

#include "Desktops/Wayland/BusFunctions.h"

#include <string_view>

namespace Orvik::Desktops::Wayland
{

BusDictionary::BusDictionary(sd_bus_message* message)
{
    const BusFunctions& bus = GetBusFunctions();
    if (bus.enterContainer(message, 'a', "{sv}") <= 0)
        return;
    while (bus.enterContainer(message, 'e', "sv") > 0)
        if (!ReadEntry(message) || bus.exitContainer(message) < 0)
            return;
}

bool BusDictionary::ReadEntry(sd_bus_message* message)
{
    const BusFunctions& bus = GetBusFunctions();
    const char* name = nullptr;
    char type = 0;
    const char* contents = nullptr;
    if (bus.read(message, "s", &name) <= 0 || bus.peekType(message, &type, &contents) <= 0)
        return false;
    if (std::string_view(contents) == "u")
        return bus.read(message, "v", "u", &m_numbers[name]) > 0;
    if (std::string_view(contents) != "s")
        return bus.skip(message, "v") >= 0;
    const char* text = nullptr;
    if (bus.read(message, "v", "s", &text) <= 0)
        return false;
    m_texts[name] = text;
    return true;
}

std::optional<std::uint32_t> BusDictionary::GetNumber(const std::string& name) const
{
    const auto place = m_numbers.find(name);
    return place != m_numbers.end() ? std::optional(place->second) : std::nullopt;
}

std::optional<std::string> BusDictionary::GetText(const std::string& name) const
{
    const auto place = m_texts.find(name);
    return place != m_texts.end() ? std::optional(place->second) : std::nullopt;
}

} // namespace Orvik::Desktops::Wayland
