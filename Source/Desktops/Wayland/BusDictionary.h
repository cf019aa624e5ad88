#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

struct sd_bus_message;

namespace Orvik::Desktops::Wayland
{

/// The texts and whole numbers of a dictionary in a message, by name; what has another type is passed over.
class BusDictionary
{
public:
    /// Reads the dictionary of variants that comes next in the message. Empty if it is something else, and of one that
    /// is broken as far as it can be read.
    explicit BusDictionary(sd_bus_message* message);

    [[nodiscard]] std::optional<std::uint32_t> GetNumber(const std::string& name) const;
    [[nodiscard]] std::optional<std::string> GetText(const std::string& name) const;

private:
    /// False if the message is broken.
    bool ReadEntry(sd_bus_message* message);

    std::map<std::string, std::uint32_t> m_numbers;
    std::map<std::string, std::string> m_texts;
};

} // namespace Orvik::Desktops::Wayland
