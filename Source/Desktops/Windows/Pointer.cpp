#include "Desktops/Windows/Pointer.h"

#include "Core/System/Error/SystemError.h"
#include "Systems/Windows/SystemCall.h"
#include "Systems/Windows/WindowsHeaders.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Orvik::Desktops::Windows
{
namespace
{

using Systems::SystemCall;

/// Converts a coordinate to the input queue's scale of 0 to 65535 for the whole virtual desktop. The half pixel puts it
/// in the middle of the pixel, so that the system's rounding doesn't move it. Positions far off the desktop are cut.
LONG ScaleCoordinate(std::int32_t coordinate, int desktopBegin, int desktopSize)
{
    using Limits = std::numeric_limits<LONG>;
    const double inDesktop = static_cast<double>(coordinate) - desktopBegin + 0.5;
    const double scaled = inDesktop / std::max(desktopSize, 1) * 65535.0;
    return static_cast<LONG>(std::clamp<double>(scaled, Limits::min(), Limits::max()));
}

} // namespace

Failure Pointer::ReadPosition(System::Math::Point& position)
{
    POINT found = {};
    if (SystemCall<&::GetCursorPos>(&found) == FALSE)
        return System::Error::FormatLastError();
    position = {found.x, found.y};
    return std::nullopt;
}

Failure Pointer::Move(const System::Math::Point& position)
{
    const int left = SystemCall<&::GetSystemMetrics>(SM_XVIRTUALSCREEN);
    const int top = SystemCall<&::GetSystemMetrics>(SM_YVIRTUALSCREEN);
    const int width = SystemCall<&::GetSystemMetrics>(SM_CXVIRTUALSCREEN);
    const int height = SystemCall<&::GetSystemMetrics>(SM_CYVIRTUALSCREEN);
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dx = ScaleCoordinate(position.x, left, width);
    input.mi.dy = ScaleCoordinate(position.y, top, height);
    input.mi.dwFlags = MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_VIRTUALDESK | MOUSEEVENTF_MOVE;
    if (SystemCall<&::SendInput>(1, &input, sizeof(input)) != 1)
        return System::Error::FormatLastError();
    return std::nullopt;
}

void Pointer::Show(bool visible)
{
    if (visible == m_isVisible)
        return;
    m_isVisible = visible;
    ::ShowCursor(visible ? TRUE : FALSE);
}

} // namespace Orvik::Desktops::Windows
