#include "Tests/Support/PrivateMounts.h"

#include <fstream>
#include <iterator>
#include <sched.h>
#include <stdexcept>
#include <string>
#include <sys/mount.h>
#include <unistd.h>

namespace Orvik::Tests
{
namespace
{

bool WriteFile(const char* path, const std::string& text)
{
    std::ofstream stream(path);
    stream << text << std::flush;
    return stream.good();
}

bool EnterNamespace()
{
    const std::string user = std::to_string(getuid());
    const std::string group = std::to_string(getgid());
    if (getuid() == 0)
        return unshare(CLONE_NEWNS) == 0;
    // In a user namespace of its own anybody may mount. The user stays who it is.
    return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && WriteFile("/proc/self/setgroups", "deny") &&
           WriteFile("/proc/self/uid_map", user + " " + user + " 1") &&
           WriteFile("/proc/self/gid_map", group + " " + group + " 1");
}

/// Keeps what is mounted here from other namespaces.
bool StopSharing()
{
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0)
        return true;
    // The root of a changed root directory is no mount of its own. What is mounted there may be nobody else's anyway.
    std::ifstream mounts("/proc/self/mountinfo");
    const std::string text{std::istreambuf_iterator<char>(mounts), {}};
    return !text.empty() && text.find(" shared:") == std::string::npos;
}

void Mount(const char* source, const std::filesystem::path& target, const char* type, unsigned long flags,
           const std::string& options)
{
    if (mount(source, target.c_str(), type, flags, options.c_str()) != 0)
        throw std::runtime_error("Can't mount " + target.string());
}

} // namespace

PrivateMounts::PrivateMounts() : m_isGranted(EnterNamespace() && StopSharing())
{
}

void PrivateMounts::MountDisk(const std::filesystem::path& directory, std::size_t bytes) const
{
    Mount("none", directory, "tmpfs", 0, "size=" + std::to_string(bytes));
}

void PrivateMounts::MakeReadOnly(const std::filesystem::path& path) const
{
    Mount(path.c_str(), path, nullptr, MS_BIND, "");
    Mount("none", path, nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, "");
}

} // namespace Orvik::Tests
