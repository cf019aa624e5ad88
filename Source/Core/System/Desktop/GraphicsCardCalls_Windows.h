#pragma once

// Private to the Windows half.

#include "Core/System/Platform/Headers/WindowsHeaders.h"

namespace Orvik::System::Desktop
{

/// The system's functions that know the graphics card. A table, so that a test can stand for machines with other cards.
struct GraphicsCardCalls
{
    decltype(&::GetSystemMetrics) getSystemMetrics = &::GetSystemMetrics;
    decltype(&::EnumDisplayDevicesW) enumDisplayDevices = &::EnumDisplayDevicesW;
    decltype(&::DescribePixelFormat) describePixelFormat = &::DescribePixelFormat;
};

[[nodiscard]] inline GraphicsCardCalls& GetGraphicsCardCalls()
{
    static GraphicsCardCalls s_calls;
    return s_calls;
}

} // namespace Orvik::System::Desktop
