#pragma once

#include <cstddef>

namespace Orvik::System::Constexpr
{

/// A text that can be a template argument: up to `Capacity` - 1 characters, filled up with zeros.
template <std::size_t Capacity>
struct CharacterArray
{
    constexpr CharacterArray() = default;

    /// A literal. One that is too long doesn't compile.
    template <std::size_t Size>
    requires(Size <= Capacity) consteval CharacterArray(const char (&text)[Size])
    {
        for (std::size_t index = 0; index < Size; ++index)
            characters[index] = text[index];
    }

    char characters[Capacity] = {};
};

} // namespace Orvik::System::Constexpr
