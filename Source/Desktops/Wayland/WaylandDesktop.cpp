#include "Desktops/Wayland/WaylandDesktop.h"

#include "Core/System/Desktop/DisplayMode.h"
#include "Core/System/Log/LogSite.h"
#include "Desktops/Wayland/ActiveOutput.h"
#include "Desktops/Wayland/BusFunctions.h"
#include "Desktops/Wayland/CaptureContext.h"
#include "Desktops/Wayland/GraphicsCard.h"
#include "Desktops/Wayland/OpenGLSurface.h"
#include "Desktops/Wayland/PixelSurface.h"
#include "Desktops/Wayland/Session.h"
#include "Desktops/Wayland/Window.h"

#include <algorithm>
#include <limits>

namespace Orvik::Desktops::Wayland
{
namespace
{

using System::Device::Display::DisplayMode;

/// Hertz, rounded.
std::uint32_t GetRefreshRate(const OutputDescription& description)
{
    constexpr std::int32_t unit = 1000;
    constexpr std::int32_t most = std::numeric_limits<std::uint16_t>::max();
    const std::int32_t rate = std::max(description.refreshRate, 0);
    return static_cast<std::uint32_t>(std::min(rate / unit + (rate % unit >= unit / 2 ? 1 : 0), most));
}

DisplayMode DescribeOutput(const OutputDescription& description)
{
    DisplayMode mode;
    mode.name = description.name.empty() ? description.model : description.name;
    mode.x = description.x;
    mode.y = description.y;
    mode.width = static_cast<std::uint32_t>(description.GetWidth());
    mode.height = static_cast<std::uint32_t>(description.GetHeight());
    mode.refreshRate = GetRefreshRate(description);
    return mode;
}

} // namespace

WaylandDesktop::~WaylandDesktop() = default;

const std::shared_ptr<Session>& WaylandDesktop::GetSession()
{
    if (m_isTried)
        return m_session;
    m_isTried = true;
    if (std::shared_ptr<WaylandConnection> connection = WaylandConnection::Open(m_failure))
    {
        connection->SetLossHandler(m_handlers.onLoss);
        m_session = std::make_shared<Session>(std::move(connection));
        m_session->isEnding = m_handlers.isEnding;
        m_pointer.SetSession(m_session);
    }
    return m_session;
}

Failure WaylandDesktop::Connect()
{
    return GetSession() == nullptr ? Failure(m_failure) : std::nullopt;
}

void WaylandDesktop::SetRunHandlers(const RunHandlers& handlers)
{
    m_handlers = handlers;
    if (m_session == nullptr)
        return;
    m_session->connection->SetLossHandler(handlers.onLoss);
    m_session->isEnding = handlers.isEnding;
}

bool WaylandDesktop::PrepareDisplays(const System::Log::Context& log)
{
    if (const Failure failure = Connect())
    {
        System::Log::Write(log, System::Log::MessageTypeID::Error,
                           "No Wayland compositor to ask for displays: ", *failure, ".");
        return false;
    }
    return m_session->connection->IsUsable();
}

DisplayList WaylandDesktop::ListDisplays()
{
    DisplayList list;
    const std::shared_ptr<Session>& session = GetSession();
    if (session == nullptr)
        return list;
    const Output* const active = FindActiveOutput(*session);
    std::uint32_t index = 0;
    for (const std::unique_ptr<Output>& output : session->globals.GetOutputs())
    {
        const OutputDescription& description = output->GetDescription();
        DisplayMode mode = DescribeOutput(description);
        mode.deviceIndex = index++;
        // One that is switched off has no mode. A place or a size that no display has is a mistake of the compositor's.
        if (mode.width == 0 || mode.height == 0 || !description.IsPossible())
            continue;
        System::Device::Display::DisplayDescriptor& display = list.displays.emplace_back();
        ApplyMode(mode, display);
        display.scaleX = description.GetScale();
        display.scaleY = display.scaleX;
        if (output.get() == active)
            list.activeId = static_cast<std::uint16_t>(list.displays.size());
    }
    return list;
}

Failure WaylandDesktop::CheckCapture()
{
    if (Connect())
        return std::nullopt; // which ends the run by itself
    const auto ways = MakeScreenCaptures(*m_session);
    const bool isOffered = std::any_of(ways.begin(), ways.end(),
                                       [](const std::unique_ptr<ScreenCapture>& way) { return way->IsOffered(); });
    if (isOffered)
        return std::nullopt;
    std::string missing;
    if (FindBusFunctions(missing) == nullptr)
        return "The compositor itself offers no way to take a picture of a display, and " + missing;
    return "The compositor offers no way to take a picture of a display: it has neither ext-image-copy-capture nor "
           "wlr-screencopy, and the session has neither KWin's ScreenShot2 nor a portal for screenshots";
}

GraphicsCard WaylandDesktop::FindGraphicsCard()
{
    return Wayland::FindGraphicsCard(GetSession().get());
}

std::unique_ptr<DesktopWindow> WaylandDesktop::MakeWindow(System::Desktop::Window& owner)
{
    return std::make_unique<Window>(owner, GetSession());
}

std::unique_ptr<PlatformCaptureContext> WaylandDesktop::MakeCaptureContext()
{
    return std::make_unique<CaptureContext>(GetSession());
}

std::unique_ptr<PixelMemory> WaylandDesktop::MakePixelMemory()
{
    return std::make_unique<PixelSurface>(GetSession());
}

std::unique_ptr<Desktops::OpenGLSurface> WaylandDesktop::MakeOpenGLSurface()
{
    return std::make_unique<OpenGLSurface>(GetSession());
}

} // namespace Orvik::Desktops::Wayland
