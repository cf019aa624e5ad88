#include "Core/System/Text/Guid.h"

#include <cstddef>
#include <fmt/format.h>
#include <optional>

namespace Orvik::System
{
namespace
{

std::optional<std::uint64_t> GetDigit(char character)
{
    if (character >= '0' && character <= '9')
        return static_cast<std::uint64_t>(character - '0');
    if (character >= 'A' && character <= 'F')
        return static_cast<std::uint64_t>(character - 'A' + 10);
    if (character >= 'a' && character <= 'f')
        return static_cast<std::uint64_t>(character - 'a' + 10);
    return std::nullopt;
}

} // namespace

std::string GUID::ToString() const
{
    return fmt::format("{{{:08X}-{:04X}-{:04X}-{:04X}-{:012X}}}", m_highPart >> 32U, (m_highPart >> 16U) & 0xFFFF,
                       m_highPart & 0xFFFF, m_lowPart >> 48U, m_lowPart & 0xFFFF'FFFF'FFFF);
}

GUID ParseGuid(std::string_view text) noexcept
{
    constexpr std::string_view form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    constexpr std::size_t firstHalfEnd = 18;
    if (text.size() == form.size() + 2 && text.front() == '{' && text.back() == '}')
        text = text.substr(1, form.size());
    if (text.size() != form.size())
        return {};

    GUID guid;
    for (std::size_t index = 0; index < form.size(); ++index)
    {
        if (form[index] == '-')
        {
            if (text[index] != '-')
                return {};
            continue;
        }
        const std::optional<std::uint64_t> digit = GetDigit(text[index]);
        if (!digit)
            return {};
        std::uint64_t& half = index < firstHalfEnd ? guid.m_highPart : guid.m_lowPart;
        half = (half << 4U) | *digit;
    }
    return guid;
}

} // namespace Orvik::System
