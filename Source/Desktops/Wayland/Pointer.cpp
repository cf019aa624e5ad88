#include "Desktops/Wayland/Pointer.h"

#include "Core/System/Desktop/PointerEvent.h"
#include "Desktops/Wayland/Session.h"
#include "Desktops/Wayland/WindowSurface.h"

#include <utility>

namespace Orvik::Desktops::Wayland
{
namespace
{

constexpr const char* s_noOverlay = "There is no overlay that the pointer could be on (0)";

} // namespace

void Pointer::SetSession(std::shared_ptr<Session> session)
{
    m_session = std::move(session);
}

Failure Pointer::ReadPosition(System::Math::Point& position)
{
    if (m_session == nullptr || !m_session->connection->IsUsable())
        return "No connection to the compositor (0)";
    if (m_session->overlay == nullptr)
        return s_noOverlay;
    const System::Math::Point& origin = m_session->overlay->GetOrigin();
    const System::Math::Point pixel = m_session->overlay->GetPointer().GetPixel();
    position = {origin.x + pixel.x, origin.y + pixel.y};
    return std::nullopt;
}

Failure Pointer::Move(const System::Math::Point& position)
{
    if (m_session == nullptr || !m_session->connection->IsUsable())
        return "No connection to the compositor (0)";
    WindowSurface* const overlay = m_session->overlay;
    if (overlay == nullptr)
        return s_noOverlay;
    const System::Math::Point& origin = overlay->GetOrigin();
    overlay->GetPointer().Place({position.x - origin.x, position.y - origin.y});
    System::Device::Cursor::AnnounceOwnMotion();
    return std::nullopt;
}

void Pointer::Show(bool visible)
{
    if (m_session == nullptr || !m_session->connection->IsUsable())
        return;
    m_session->seat.SetPointerVisible(visible);
    m_session->connection->Flush();
}

} // namespace Orvik::Desktops::Wayland
