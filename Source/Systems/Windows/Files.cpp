#include "Core/System/Text/Files.h"

#include "Core/System/Text/Paths.h"
#include "Core/System/Text/Unicode.h"
#include "Systems/Windows/WindowsHandle.h"

#include <cstdint>
#include <cwchar>
#include <fcntl.h>
#include <io.h>

namespace Orvik::System::Text
{

File OpenFile(const std::filesystem::path& path, const char* mode)
{
    // "N" belongs to the C library: programs that this one starts don't inherit the file.
    const std::string modeWithoutInheritance = std::string(mode) + "N";
    return File(_wfopen(path.c_str(), ToWide(modeWithoutInheritance).c_str()));
}

bool IsHeldPlatform(const std::filesystem::path& path, const std::error_code& error)
{
    // A directory at the file's place gives the same error, but waiting doesn't help there.
    const DWORD attributes = GetFileAttributesW(path.c_str());
    const bool isDirectory = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return !isDirectory && (error == std::errc::permission_denied || error == std::errc::device_or_resource_busy);
}

File OpenNewFilePlatform(const std::filesystem::path& path, bool& isTaken)
{
    constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    HANDLE const opened =
        CreateFileW(path.c_str(), GENERIC_WRITE, shared, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    isTaken = opened == INVALID_HANDLE_VALUE && GetLastError() == ERROR_FILE_EXISTS;
    if (opened == INVALID_HANDLE_VALUE)
        return nullptr;
    // From here on the C library closes the handle.
    const int descriptor = _open_osfhandle(reinterpret_cast<std::intptr_t>(opened), _O_TEXT | _O_NOINHERIT);
    return File(_fdopen(descriptor, "wt"));
}

// The profile, which has the directory, is the user's alone by its own rules.
bool CreatePrivateDirectoryPlatform(const std::filesystem::path& path, std::error_code& error)
{
    return std::filesystem::create_directory(path, error);
}

// The standard library's function cuts the time to whole seconds here.
std::int64_t GetWriteTime(const std::filesystem::path& path, std::error_code& error)
{
    constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    HANDLE const opened = CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, shared, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    const Systems::WindowsHandle file(opened != INVALID_HANDLE_VALUE ? opened : nullptr);
    FILETIME time = {};
    if (file == nullptr || GetFileTime(file.get(), nullptr, nullptr, &time) == FALSE)
    {
        error.assign(static_cast<int>(GetLastError()), std::system_category());
        return 0;
    }
    error.clear();
    const std::uint64_t ticks = std::uint64_t{time.dwHighDateTime} << 32U | time.dwLowDateTime;
    return static_cast<std::int64_t>(ticks) + WindowsFileTimeBegin;
}

} // namespace Orvik::System::Text
