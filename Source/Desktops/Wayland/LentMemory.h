#pragma once

// Wayland's own.

#include "Desktops/Wayland/SharedMemory.h"

#include <cstddef>

namespace Orvik::Desktops::Wayland
{

/// The memory of a surface while no frame has been drawn in it. A picture of the screen can be read into it in the
/// meantime: memory of a screen's size is long in coming, and one of the two is enough. The main thread.
class LentMemory
{
public:
    /// The memory has to stay where it is until it is withdrawn. The last offer counts.
    void Offer(SharedMemory& memory) { m_memory = &memory; }

    /// Nothing is read into that memory any more. Does nothing if it isn't what is offered.
    void Withdraw(const SharedMemory& memory)
    {
        if (m_memory == &memory)
            m_memory = nullptr;
    }

    /// Memory of at least that many bytes, for one picture that is read and copied before anything else is done; null
    /// if none is offered.
    [[nodiscard]] SharedMemory* Borrow(std::size_t bytes) const
    {
        return m_memory != nullptr && m_memory->GetSize() >= bytes ? m_memory : nullptr;
    }

private:
    SharedMemory* m_memory = nullptr;
};

} // namespace Orvik::Desktops::Wayland
