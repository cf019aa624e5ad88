#include "Core/System/Desktop/Cursor.h"

#include "Core/System/Desktop/PointerEvent.h"
#include "Core/System/Log/LogSite.h"
#include "Desktops/Desktop.h"

#include <string_view>

namespace Orvik::System::Device::Cursor
{
namespace
{

bool Report(std::string_view operation, const Desktops::Failure& failure)
{
    if (!failure)
        return true;
    Log::Write(Log::s_system, Log::MessageTypeID::Error, operation, " failed: ", *failure, ".");
    return false;
}

} // namespace

bool GetCurrentPosition(Math::Point& position)
{
    if (const Math::Point* const eventPosition = PointerEventScope::GetPosition())
    {
        position = *eventPosition;
        return true;
    }
    return Report("GetCurrentPosition", Desktops::GetDesktop().GetPointer().ReadPosition(position));
}

bool SetPosition(const Math::Point& position)
{
    return Report("SetPosition", Desktops::GetDesktop().GetPointer().Move(position));
}

void ShowCursor(bool visible)
{
    Desktops::GetDesktop().GetPointer().Show(visible);
}

} // namespace Orvik::System::Device::Cursor
