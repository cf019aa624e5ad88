#pragma once

// Windows' own.

#include "Systems/Windows/WindowsHeaders.h"

#include <memory>

namespace Orvik::Systems
{

struct CloseWindowsHandle
{
    void operator()(HANDLE handle) const noexcept
    {
        // The caller may ask for the last error, which must be that of an earlier call.
        const DWORD error = GetLastError();
        CloseHandle(handle);
        SetLastError(error);
    }
};

/// A handle of a kernel object, null for none. Closing it leaves the last error as it was.
using WindowsHandle = std::unique_ptr<void, CloseWindowsHandle>;

} // namespace Orvik::Systems
