#pragma once

#include <cstddef>

namespace Orvik::Desktops
{

/// The memory of a surface while no frame has been drawn in it. A picture of the screen can be read into it in the
/// meantime: getting memory of a screen's size takes long, and one of the two is enough. `Memory` is a desktop's memory
/// that is shared with its server. Main thread.
template <typename Memory>
class LentMemory
{
public:
    /// The memory has to stay in place until it is withdrawn. The last offer counts.
    void Offer(Memory& memory) { m_memory = &memory; }

    /// From now on nothing is read into that memory. Does nothing if it isn't the offered one.
    void Withdraw(const Memory& memory)
    {
        if (m_memory == &memory)
            m_memory = nullptr;
    }

    /// Memory of at least that many bytes, for one picture that is read and copied before anything else happens; null
    /// if none is offered.
    [[nodiscard]] Memory* Borrow(std::size_t bytes) const
    {
        return m_memory != nullptr && m_memory->GetSize() >= bytes ? m_memory : nullptr;
    }

private:
    Memory* m_memory = nullptr;
};

} // namespace Orvik::Desktops
