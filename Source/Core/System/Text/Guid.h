#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Orvik::System
{

/// A 128-bit identifier. It is a structural type, so that it can be a template argument.
struct GUID
{
    std::uint64_t m_highPart = 0; ///< the first half: the first three groups of the text
    std::uint64_t m_lowPart = 0;  ///< the second half: the last two groups

    constexpr bool operator==(const GUID&) const = default;

    /// The text form: 38 characters, upper-case hexadecimal in groups of 8, 4, 4, 4 and 12, in braces.
    [[nodiscard]] std::string ToString() const;
};

/// Reads 36 characters, or 38 with braces, digits of either case. Anything else gives the all-zero identifier.
[[nodiscard]] GUID ParseGuid(std::string_view text) noexcept;

} // namespace Orvik::System
