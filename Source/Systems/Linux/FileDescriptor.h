#pragma once

// Linux' own.

#include <unistd.h>
#include <utility>

namespace Orvik::Systems
{

/// Owns a file descriptor and closes it.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    /// Takes the result of a system call; a negative number means none.
    explicit FileDescriptor(int descriptor) noexcept : m_descriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~FileDescriptor()
    {
        if (IsOpen())
            close(m_descriptor);
    }

    [[nodiscard]] bool IsOpen() const noexcept { return m_descriptor >= 0; }
    [[nodiscard]] int Get() const noexcept { return m_descriptor; }
    /// Hands the descriptor over to the caller, which closes it.
    [[nodiscard]] int Release() noexcept { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor = -1;
};

} // namespace Orvik::Systems
