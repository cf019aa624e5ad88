#pragma once

// X11's own.

#include "Desktops/X11/XSharedMemory.h"

#include <cstddef>

namespace Orvik::Desktops::X11
{

/// The memory of a surface before its first frame is drawn. Until then a picture of the screen can be read into it:
/// getting memory of a screen's size takes long, and one of the two is enough. Main thread.
class LentMemory
{
public:
    /// The memory has to stay in place until it is withdrawn. The last offer counts.
    void Offer(XSharedMemory& memory) { m_memory = &memory; }

    /// From now on nothing is read into that memory. Does nothing if it isn't the offered one.
    void Withdraw(const XSharedMemory& memory)
    {
        if (m_memory == &memory)
            m_memory = nullptr;
    }

    /// Memory of at least that many bytes, for one picture that is read and copied before anything else happens; null
    /// if none is offered.
    [[nodiscard]] XSharedMemory* Borrow(std::size_t bytes) const
    {
        return m_memory != nullptr && m_memory->GetBytes() >= bytes ? m_memory : nullptr;
    }

private:
    XSharedMemory* m_memory = nullptr;
};

} // namespace Orvik::Desktops::X11
