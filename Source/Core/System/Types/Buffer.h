#pragma once

#include <cstdint>

namespace Orvik::System::Types
{

/// A view on memory that somebody else owns. Passed by value; nobody frees anything through it.
template <typename T>
struct Buffer
{
    T* data = nullptr;
    std::uint64_t size = 0; ///< elements

    [[nodiscard]] constexpr std::uint64_t GetSize() const noexcept { return size; }
};

} // namespace Orvik::System::Types
