#include "Core/System/Error/SystemError.h"
#include "Core/System/Text/Unicode.h"
#include "Systems/Windows/WindowsHeaders.h"

#include <memory>

namespace Orvik::System::Error
{
namespace
{

struct FreeLocalMemory
{
    void operator()(wchar_t* memory) const noexcept { LocalFree(memory); }
};

} // namespace

std::uint32_t GetLastErrorPlatform() noexcept
{
    return GetLastError();
}

std::string GetErrorMessagePlatform(std::uint32_t code)
{
    wchar_t* buffer = nullptr;
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM,
                       nullptr, code, GetUserDefaultLangID(), reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    const std::unique_ptr<wchar_t, FreeLocalMemory> message(buffer);
    return Text::ToUtf8({message.get(), length});
}

} // namespace Orvik::System::Error
