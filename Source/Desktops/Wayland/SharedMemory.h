#pragma once

// Wayland's own.

#include "Desktops/LentMemory.h"
#include "Systems/Linux/FileDescriptor.h"

#include <cstddef>

namespace Orvik::Desktops::Wayland
{

/// Memory that the compositor can map as well. Its contents are zero at first.
class SharedMemory
{
public:
    SharedMemory() = default;
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    /// Makes memory of that many bytes, 1 to 2 GiB, in place of what there was. False if it can't be had; there is none
    /// then.
    [[nodiscard]] bool Create(std::size_t bytes);
    void Destroy() noexcept;

    [[nodiscard]] unsigned char* GetBytes() const { return m_bytes; } ///< null without memory
    [[nodiscard]] std::size_t GetSize() const { return m_size; }
    [[nodiscard]] int GetDescriptor() const { return m_descriptor.Get(); }

private:
    Systems::FileDescriptor m_descriptor;
    unsigned char* m_bytes = nullptr;
    std::size_t m_size = 0;
};

using LentMemory = Desktops::LentMemory<SharedMemory>;

} // namespace Orvik::Desktops::Wayland
