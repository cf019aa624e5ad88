#include "Core/System/Device/Cursor/Cursor.h"
#include "Core/System/Device/Cursor/CursorFailure.h"
#include "Core/System/Platform/NullDesktop.h"

namespace Orvik::System::Device::Cursor
{
namespace
{

using Platform::NullDesktop;

constexpr const char* s_refusal = "Refused (0)";

} // namespace

bool GetCurrentPosition(Math::Point& position)
{
    const NullDesktop& desktop = NullDesktop::GetInstance();
    if (desktop.cursorFails)
        return ReportFailure("GetCurrentPosition", s_refusal);
    position = desktop.cursorPosition;
    return true;
}

bool SetPosition(const Math::Point& position)
{
    NullDesktop& desktop = NullDesktop::GetInstance();
    if (desktop.cursorFails)
        return ReportFailure("SetPosition", s_refusal);
    desktop.cursorPosition = position;
    desktop.cursorMoves.push_back(position);
    return true;
}

void ShowCursor(bool visible)
{
    NullDesktop::GetInstance().cursorVisible = visible;
}

} // namespace Orvik::System::Device::Cursor
