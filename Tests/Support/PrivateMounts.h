#pragma once

#include <cstddef>
#include <filesystem>

namespace Orvik::Tests
{

/// File systems that only this process and its later children see. They go with the last of them.
///
/// The system may not grant them: `IsGranted` tells, and a test that needs them is skipped then.
class PrivateMounts
{
public:
    /// Moves the process into a mount namespace of its own. The process must not have threads.
    PrivateMounts();

    [[nodiscard]] bool IsGranted() const { return m_isGranted; }

    /// An empty disk of that size in place of the directory. Throws `std::runtime_error` if that fails, as does the
    /// next.
    void MountDisk(const std::filesystem::path& directory, std::size_t bytes) const;
    /// Makes a directory with all below it, or a file, one that can't be written, not even by root.
    void MakeReadOnly(const std::filesystem::path& path) const;

private:
    bool m_isGranted;
};

} // namespace Orvik::Tests
