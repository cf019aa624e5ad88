#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Orvik::System::Types
{

/// The 64-bit FNV-1a hash of the bytes.
[[nodiscard]] constexpr std::uint64_t HashFnv1a(std::string_view text) noexcept
{
    constexpr std::uint64_t offsetBasis = 0xCBF29CE484222325;
    constexpr std::uint64_t prime = 0x100000001B3;
    std::uint64_t hash = offsetBasis;
    for (const char character : text)
        hash = (hash ^ static_cast<unsigned char>(character)) * prime;
    return hash;
}

/// The hash of a map with string keys.
struct StringHash
{
    [[nodiscard]] std::size_t operator()(std::string_view text) const noexcept
    {
        return static_cast<std::size_t>(HashFnv1a(text));
    }
};

} // namespace Orvik::System::Types
