#include "Desktops/Wayland/WindowSurface.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// How long a frame waits for the one before. What can't be seen isn't shown, and input goes on all the same.
constexpr std::int64_t s_frameLimit = 100'000'000;

/// One side of a surface.
struct Side
{
    std::uint32_t units;
    std::uint32_t pixels; ///< that the compositor shows the units on
};

/// The side in units that covers so many pixels, at the size that the compositor gives and larger by a unit at most: it
/// cuts the size of a display to whole units, and a part of one may be left.
Side FindSide(std::uint32_t pixels, std::uint32_t units, double scale)
{
    const auto toPixels = [scale](std::uint32_t count)
    { return static_cast<std::uint32_t>(std::lround(count * scale)); };
    if (toPixels(units) >= pixels)
        return {units, toPixels(units)};
    return {units + 1, toPixels(units + 1)};
}

/// The scale by which both sides come out to less than two pixels; else there is no such scale.
bool IsScaleOf(double scale, const WindowSize& pixels, const WindowSize& units)
{
    return std::abs(units.width * scale - pixels.width) < 2.0 && std::abs(units.height * scale - pixels.height) < 2.0;
}

} // namespace

WindowSurface* Session::FindSurface(NativeWindow window) const
{
    const auto found = std::find_if(surfaces.begin(), surfaces.end(),
                                    [window](const WindowSurface* surface) { return surface->GetHandle() == window; });
    return found != surfaces.end() ? *found : nullptr;
}

WindowSurface* Session::FindSurface(const wl_surface* proxy) const
{
    const auto found = std::find_if(surfaces.begin(), surfaces.end(),
                                    [proxy](const WindowSurface* surface) { return surface->GetProxy() == proxy; });
    return found != surfaces.end() ? *found : nullptr;
}

WindowSurface::WindowSurface(std::shared_ptr<Session> session, const System::Math::Point& origin,
                             const WindowSize& size)
    : m_session(std::move(session)),
      m_origin(origin),
      m_size(size),
      m_bufferSize(size),
      m_scale(1.0),
      m_surface(wl_compositor_create_surface(m_session->globals.compositor)),
      m_claim(*this)
{
    m_session->surfaces.push_back(this);
    if (m_session->globals.viewporter != nullptr)
        m_viewport.reset(wp_viewporter_get_viewport(m_session->globals.viewporter, m_surface.get()));
    m_pointer.SetSpace(m_size, {static_cast<double>(m_size.width), static_cast<double>(m_size.height)});
}

WindowSurface::~WindowSurface()
{
    std::erase(m_session->surfaces, this);
    if (m_session->overlay == this)
        m_session->overlay = nullptr;
    m_claim.End();
    m_session->seat.Forget(m_surface.get());
    m_frame.reset();
    m_viewport.reset();
    m_role.Reset();
    m_surface.reset();
    m_session->connection->Flush();
}

NativeWindow WindowSurface::GetHandle() const
{
    return static_cast<NativeWindow>(reinterpret_cast<std::uintptr_t>(this));
}

Failure WindowSurface::TakeRole(const Output* output, const std::string& title)
{
    m_output = output != nullptr ? output->GetProxy() : nullptr;
    m_scale = output != nullptr ? output->GetDescription().GetScale() : 1.0;
    m_title = title;
    return Configure();
}

// A role is taken anew for each time that the surface is shown: some compositors send no size to one that was unmapped.
Failure WindowSurface::Configure()
{
    const Globals& globals = m_session->globals;
    Failure failure = m_output != nullptr ? m_role.Cover(globals, m_surface.get(), m_output, m_title.c_str())
                                          : m_role.BeWindow(globals, m_surface.get(), m_title.c_str());
    if (failure)
        return failure;
    m_hasRole = true;
    m_role.SetKeyboard(!m_isClickThrough);
    wl_surface_commit(m_surface.get());
    const auto isAnswered = [this] { return m_role.IsConfigured() || m_role.HasNews(); };
    if (!m_session->connection->WaitUntil([this] { return m_role.IsConfigured(); }) && !isAnswered())
        return "the compositor gives the surface no size";
    if (!m_role.IsConfigured() && m_role.TakeClosing())
        return "the compositor refuses the surface";
    FollowSize();
    return std::nullopt;
}

void WindowSurface::Unmap()
{
    if (!std::exchange(m_isMapped, false))
        return;
    m_frame.reset();
    m_hasRole = false;
    m_role.Reset();
    wl_surface_attach(m_surface.get(), nullptr, 0, 0);
    wl_surface_commit(m_surface.get());
    m_session->connection->Flush();
}

bool WindowSurface::TakeClosing()
{
    const bool isAsked = m_role.TakeClosing();
    const bool isLost = m_output != nullptr && m_session->globals.FindOutput(m_output) == nullptr;
    return (isAsked || isLost) && !std::exchange(m_isClosed, true);
}

void WindowSurface::FollowSize()
{
    [[maybe_unused]] const bool isResized = m_role.TakeResizing();
    WindowSize units = m_role.GetSize();
    if (units.width == 0 || units.height == 0)
        units = m_size;
    if (m_viewport == nullptr)
        ScaleByWhole(units);
    else if (IsScaleOf(m_scale, m_size, units))
        CoverPixels(units);
    else
    {
        // Not the display's size: what there is, is shown as large as it is to be.
        m_bufferSize = m_size;
        wp_viewport_set_destination(m_viewport.get(), static_cast<std::int32_t>(units.width),
                                    static_cast<std::int32_t>(units.height));
        m_pointer.SetSpace(m_size, {static_cast<double>(units.width), static_cast<double>(units.height)});
    }
}

void WindowSurface::CoverPixels(const WindowSize& units)
{
    const Side width = FindSide(m_size.width, units.width, m_scale);
    const Side height = FindSide(m_size.height, units.height, m_scale);
    m_bufferSize = {std::max(width.pixels, m_size.width), std::max(height.pixels, m_size.height)};
    wp_viewport_set_destination(m_viewport.get(), static_cast<std::int32_t>(width.units),
                                static_cast<std::int32_t>(height.units));
    // Devices that say places have the display's whole width on the units that the compositor gives, cut as they are.
    m_pointer.SetSpace(m_size, {static_cast<double>(units.width), static_cast<double>(units.height)});
}

// Without viewports there are whole scales alone.
void WindowSurface::ScaleByWhole(const WindowSize& units)
{
    const std::uint32_t scale = std::max((m_size.width + units.width / 2) / units.width, 1U);
    wl_surface_set_buffer_scale(m_surface.get(), static_cast<std::int32_t>(scale));
    m_bufferSize = m_size;
    m_pointer.SetSpace(m_size, {static_cast<double>(m_size.width) / scale, static_cast<double>(m_size.height) / scale});
}

void WindowSurface::SetClickThrough(bool enabled)
{
    m_isClickThrough = enabled;
    wl_region* const nothing = enabled ? wl_compositor_create_region(m_session->globals.compositor) : nullptr;
    wl_surface_set_input_region(m_surface.get(), nothing);
    if (nothing != nullptr)
        wl_region_destroy(nothing);
    m_role.SetKeyboard(!enabled);
    wl_surface_commit(m_surface.get());
    m_session->connection->Flush();
}

void WindowSurface::SetTitle(const std::string& title)
{
    m_title = title;
    m_role.SetTitle(m_title.c_str());
    m_session->connection->Flush();
}

bool WindowSurface::AwaitFrame()
{
    if (!IsUsable() || (!m_hasRole && Configure()))
        return false;
    if (m_frame != nullptr && !m_session->connection->WaitUntil([this] { return m_frame == nullptr; }, s_frameLimit))
        m_frame.reset();
    return IsUsable() && m_role.IsConfigured();
}

void WindowSurface::RequestFrame()
{
    static constexpr wl_callback_listener s_listener = {.done = [](void* data, wl_callback*, std::uint32_t)
                                                        { static_cast<WindowSurface*>(data)->m_frame.reset(); }};
    m_frame.reset(wl_surface_frame(m_surface.get()));
    wl_callback_add_listener(m_frame.get(), &s_listener, this);
}

void WindowSurface::FinishFrame()
{
    m_isMapped = true;
    m_session->connection->Flush();
}

} // namespace Orvik::Desktops::Wayland
