#include "Core/System/Text/Files.h"

#include "Core/System/Text/Paths.h"
#include "Systems/Linux/FileDescriptor.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/stat.h>

namespace Orvik::System::Text
{

File OpenFile(const std::filesystem::path& path, const char* mode)
{
    // "e" belongs to the C library: close the file when another program replaces this one in the process.
    const std::string modeWithoutInheritance = std::string(mode) + "e";
    return File(std::fopen(path.c_str(), modeWithoutInheritance.c_str()));
}

// On Linux a file can be replaced even while it is read.
bool IsHeldPlatform(const std::filesystem::path& /*path*/, const std::error_code& /*error*/)
{
    return false;
}

File OpenNewFilePlatform(const std::filesystem::path& path, bool& isTaken)
{
    constexpr mode_t readAndWrite = 0600;
    Systems::FileDescriptor descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, readAndWrite));
    isTaken = !descriptor.IsOpen() && errno == EEXIST;
    if (!descriptor.IsOpen())
        return nullptr;
    File file(fdopen(descriptor.Get(), "w"));
    if (file != nullptr)
        static_cast<void>(descriptor.Release()); // the file's own now
    return file;
}

bool CreatePrivateDirectoryPlatform(const std::filesystem::path& path, std::error_code& error)
{
    constexpr mode_t forTheUser = 0700;
    error.clear();
    if (mkdir(path.c_str(), forTheUser) == 0)
        return true;
    const int reason = errno;
    std::error_code ignored;
    if (reason != EEXIST || !std::filesystem::is_directory(path, ignored))
        error.assign(reason, std::generic_category());
    return false;
}

std::int64_t GetWriteTime(const std::filesystem::path& path, std::error_code& error)
{
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    const std::filesystem::file_time_type time = std::filesystem::last_write_time(path, error);
    if (error)
        return 0;
    const auto systemTime = std::chrono::file_clock::to_sys(time);
    return std::chrono::floor<Ticks>(systemTime.time_since_epoch()).count();
}

} // namespace Orvik::System::Text
