#pragma once

#include <cstddef>
#include <filesystem>

namespace Orvik::Tests
{

/// File systems that only this process and its later children see. They end with the last of these.
///
/// The system may refuse them: `IsGranted` says so, and a test that needs them is skipped then.
class PrivateMounts
{
public:
    /// Moves the process into a mount namespace of its own. The process must not have threads.
    PrivateMounts();

    [[nodiscard]] bool IsGranted() const { return m_isGranted; }

    /// Mounts an empty disk of that size on the directory. Throws `std::runtime_error` on failure, like the next one.
    void MountDisk(const std::filesystem::path& directory, std::size_t bytes) const;
    /// Makes a file, or a directory with its contents, read-only, even for root.
    void MakeReadOnly(const std::filesystem::path& path) const;

private:
    bool m_isGranted;
};

} // namespace Orvik::Tests
