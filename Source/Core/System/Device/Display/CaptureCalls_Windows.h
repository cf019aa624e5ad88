#pragma once

// Private to the Windows half.

#include "Core/System/Platform/Headers/WindowsHeaders.h"

#include <dwmapi.h>

namespace Orvik::System::Device::Display
{

/// The system's functions that a capture is made with. A table, so that a test can refuse each of them, count what is
/// released, and stand for other desktops.
struct CaptureCalls
{
    decltype(&::GetThreadDesktop) getThreadDesktop = &::GetThreadDesktop;
    decltype(&::GetUserObjectInformationW) getUserObjectInformation = &::GetUserObjectInformationW;
    decltype(&::OpenInputDesktop) openInputDesktop = &::OpenInputDesktop;
    decltype(&::SetThreadDesktop) setThreadDesktop = &::SetThreadDesktop;
    decltype(&::CloseDesktop) closeDesktop = &::CloseDesktop;
    decltype(&::GetDC) getDC = &::GetDC;
    decltype(&::ReleaseDC) releaseDC = &::ReleaseDC;
    decltype(&::CreateDIBSection) createDIBSection = &::CreateDIBSection;
    decltype(&::CreateCompatibleDC) createCompatibleDC = &::CreateCompatibleDC;
    decltype(&::SelectObject) selectObject = &::SelectObject;
    decltype(&::BitBlt) bitBlt = &::BitBlt;
    decltype(&::DeleteObject) deleteObject = &::DeleteObject;
    decltype(&::DeleteDC) deleteDC = &::DeleteDC;
    decltype(&::GetProcAddress) getProcAddress = &::GetProcAddress;
    decltype(&::DwmIsCompositionEnabled) isCompositionEnabled = &::DwmIsCompositionEnabled;
};

[[nodiscard]] inline CaptureCalls& GetCaptureCalls()
{
    static CaptureCalls s_calls;
    return s_calls;
}

} // namespace Orvik::System::Device::Display
