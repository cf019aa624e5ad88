#include "Core/System/Device/Cursor/Cursor.h"
#include "Core/System/Device/Cursor/CursorCalls_Windows.h"
#include "Core/System/Device/Cursor/CursorFailure.h"
#include "Core/System/Error/SystemError.h"
#include "Core/System/Platform/Headers/WindowsHeaders.h"
#include "Core/System/Platform/PointerEvent.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Orvik::System::Device::Cursor
{
namespace
{

/// A coordinate on the scale of 0 to 65535 that the input queue has for the whole virtual desktop. The half pixel puts
/// it in the middle of the pixel, so that the system's rounding doesn't shift it. What is far off the desktop is cut.
LONG ScaleCoordinate(std::int32_t coordinate, int desktopBegin, int desktopSize)
{
    using Limits = std::numeric_limits<LONG>;
    const double inDesktop = static_cast<double>(coordinate) - desktopBegin + 0.5;
    const double scaled = inDesktop / std::max(desktopSize, 1) * 65535.0;
    return static_cast<LONG>(std::clamp<double>(scaled, Limits::min(), Limits::max()));
}

} // namespace

bool GetCurrentPosition(Math::Point& position)
{
    if (const Math::Point* const eventPosition = Platform::PointerEventScope::GetPosition())
    {
        position = *eventPosition;
        return true;
    }
    POINT found = {};
    if (GetCursorCalls().getCursorPos(&found) == FALSE)
        return ReportFailure("GetCurrentPosition", Error::FormatLastError());
    position = {found.x, found.y};
    return true;
}

bool SetPosition(const Math::Point& position)
{
    const CursorCalls& calls = GetCursorCalls();
    const int left = calls.getSystemMetrics(SM_XVIRTUALSCREEN);
    const int top = calls.getSystemMetrics(SM_YVIRTUALSCREEN);
    const int width = calls.getSystemMetrics(SM_CXVIRTUALSCREEN);
    const int height = calls.getSystemMetrics(SM_CYVIRTUALSCREEN);
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dx = ScaleCoordinate(position.x, left, width);
    input.mi.dy = ScaleCoordinate(position.y, top, height);
    input.mi.dwFlags = MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_VIRTUALDESK | MOUSEEVENTF_MOVE;
    if (calls.sendInput(1, &input, sizeof(input)) != 1)
        return ReportFailure("SetPosition", Error::FormatLastError());
    return true;
}

void ShowCursor(bool visible)
{
    // The system counts; a caller that says the same twice means it once.
    static bool s_isVisible = true;
    if (visible == s_isVisible)
        return;
    s_isVisible = visible;
    ::ShowCursor(visible ? TRUE : FALSE);
}

} // namespace Orvik::System::Device::Cursor
