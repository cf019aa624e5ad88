#include "Core/System/Error/SystemError.h"
#include "Core/System/Platform/Headers/WindowsHeaders.h"

#include <memory>

namespace Orvik::System::Error
{
namespace
{

struct FreeLocalMemory
{
    void operator()(char* memory) const noexcept { LocalFree(memory); }
};

} // namespace

std::uint32_t GetLastErrorPlatform() noexcept
{
    return GetLastError();
}

void SetLastErrorPlatform(std::uint32_t code) noexcept
{
    SetLastError(code);
}

// The code page of the process is UTF-8, by its manifest.
std::string GetErrorMessagePlatform(std::uint32_t code)
{
    char* buffer = nullptr;
    const DWORD length =
        FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM,
                       nullptr, code, GetUserDefaultLangID(), reinterpret_cast<char*>(&buffer), 0, nullptr);
    const std::unique_ptr<char, FreeLocalMemory> message(buffer);
    return {message.get(), length};
}

} // namespace Orvik::System::Error
