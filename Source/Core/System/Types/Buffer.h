#pragma once

#include <cstdint>

namespace Orvik::System::Types
{

/// A view of memory that another object owns. Passed by value; it frees nothing.
template <typename T>
struct Buffer
{
    T* data = nullptr;
    std::uint64_t size = 0; ///< elements

    [[nodiscard]] constexpr std::uint64_t GetSize() const noexcept { return size; }
};

} // namespace Orvik::System::Types
