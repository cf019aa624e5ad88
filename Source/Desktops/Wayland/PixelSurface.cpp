#include "Desktops/Wayland/PixelSurface.h"

#include "Desktops/Wayland/Session.h"
#include "Desktops/Wayland/ShownMemory.h"
#include "Desktops/Wayland/WindowSurface.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Orvik::Desktops::Wayland
{

/// Two memories, of which the second is made when it is needed.
struct PixelSurface::Native
{
    NativeWindow window = NativeWindow::None;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::array<ShownMemory, 2> memories;
    std::size_t current = 0; ///< that is drawn in, or was last
    bool hasSecond = false;

    [[nodiscard]] ShownMemory& GetCurrent() { return memories[current]; }
    [[nodiscard]] ShownMemory& GetOther() { return memories[1 - current]; }

    /// Goes on in a memory that the compositor doesn't read, with all that was drawn. False if there is none.
    [[nodiscard]] bool Turn(Session& session);
};

bool PixelSurface::Native::Turn(Session& session)
{
    if (!GetCurrent().IsHeld())
        return true;
    if (!hasSecond)
    {
        if (!GetOther().Create(session.globals.shm, width, height))
            return false;
        GetOther().Outdate({0, 0, static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)});
        hasSecond = true;
    }
    if (!session.connection->WaitUntil([this] { return !GetOther().IsHeld() || !GetCurrent().IsHeld(); }))
        return false;
    if (!GetCurrent().IsHeld())
        return true;
    GetOther().Update(GetCurrent());
    current = 1 - current;
    return true;
}

PixelSurface::PixelSurface(std::shared_ptr<Session> session) noexcept : m_session(std::move(session))
{
}

PixelSurface::~PixelSurface()
{
    Destroy();
}

bool PixelSurface::Create(NativeWindow window, std::uint32_t width, std::uint32_t height)
{
    Destroy();
    const bool isUsable = m_session != nullptr && m_session->connection->IsUsable();
    const WindowSurface* const surface = isUsable ? m_session->FindSurface(window) : nullptr;
    if (surface == nullptr)
        return false;
    auto native = std::make_unique<Native>();
    native->window = window;
    native->width = std::max(width, surface->GetBufferSize().width);
    native->height = std::max(height, surface->GetBufferSize().height);
    if (!native->GetCurrent().Create(m_session->globals.shm, native->width, native->height))
        return false;
    m_native = std::move(native);
    m_session->lentMemory.Offer(m_native->GetCurrent().GetMemory());
    return true;
}

void PixelSurface::Destroy() noexcept
{
    if (m_native)
        m_session->lentMemory.Withdraw(m_native->memories[0].GetMemory());
    m_native.reset();
}

std::uint32_t* PixelSurface::GetPixels() const noexcept
{
    return m_native ? m_native->GetCurrent().GetPixels() : nullptr;
}

std::size_t PixelSurface::GetStride() const noexcept
{
    return m_native ? m_native->width : 0;
}

bool PixelSurface::BeginFrame()
{
    if (!m_native)
        return false;
    m_session->lentMemory.Withdraw(m_native->memories[0].GetMemory());
    WindowSurface* const surface = m_session->FindSurface(m_native->window);
    return surface != nullptr && surface->AwaitFrame() && m_native->Turn(*m_session);
}

void PixelSurface::Present(std::span<const System::Math::Rectangle> areas)
{
    WindowSurface* const surface = m_native ? m_session->FindSurface(m_native->window) : nullptr;
    if (surface == nullptr || !surface->IsUsable())
        return;
    for (const System::Math::Rectangle& area : areas)
    {
        m_native->GetCurrent().MakeOpaque(area);
        if (m_native->hasSecond)
            m_native->GetOther().Outdate(area);
        wl_surface_damage_buffer(surface->GetProxy(), area.left, area.top, area.right - area.left,
                                 area.bottom - area.top);
    }
}

void PixelSurface::EndFrame()
{
    WindowSurface* const surface = m_native ? m_session->FindSurface(m_native->window) : nullptr;
    if (surface == nullptr || !surface->IsUsable())
        return;
    ShownMemory& memory = m_native->GetCurrent();
    wl_surface_attach(surface->GetProxy(), memory.GetBuffer(), 0, 0);
    memory.Hand();
    surface->RequestFrame();
    wl_surface_commit(surface->GetProxy());
    surface->FinishFrame();
}

} // namespace Orvik::Desktops::Wayland
