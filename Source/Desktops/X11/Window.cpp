#include "Desktops/X11/Window.h"

#include "Core/System/Log/LogSite.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Desktops/X11/OverlayVisual.h"
#include "Desktops/X11/WindowHints.h"
#include "Desktops/X11/WindowNative.h"
#include "Desktops/X11/XConnection.h"

#include <X11/cursorfont.h>
#include <X11/extensions/Xfixes.h>
#include <X11/extensions/shape.h>
#include <fmt/format.h>
#include <limits>
#include <string>

namespace Orvik::Desktops::X11
{
namespace
{

constexpr long s_eventMask = KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask |
                             StructureNotifyMask | ExposureMask | FocusChangeMask;

struct CreatedWindow
{
    ::Window window = None;
    Colormap colormap = None;
};

NativeWindow ReportFailedCreation(const std::string& text)
{
    System::Log::Write(System::Log::s_system, System::Log::MessageTypeID::Error, "Failed to create window: ", text);
    return NativeWindow::None;
}

/// The protocol has 16 bits for each number of a geometry and drops the higher bits.
bool FitsProtocol(const System::Math::Point& position, const WindowSize& size)
{
    constexpr std::uint32_t longestSide = std::numeric_limits<std::uint16_t>::max();
    constexpr std::int32_t farthest = std::numeric_limits<std::int16_t>::max();
    const auto isReachable = [](std::int32_t value) { return value >= -farthest - 1 && value <= farthest; };
    return size.width >= 1 && size.width <= longestSide && size.height >= 1 && size.height <= longestSide &&
           isReachable(position.x) && isReachable(position.y);
}

CreatedWindow CreateInputOnlyWindow(::Display* display)
{
    XSetWindowAttributes attributes = {};
    attributes.event_mask = StructureNotifyMask;
    attributes.override_redirect = True;
    return {XCreateWindow(display, DefaultRootWindow(display), -1, -1, 1, 1, 0, 0, InputOnly, CopyFromParent,
                          CWEventMask | CWOverrideRedirect, &attributes),
            None};
}

/// The overlay has the visual of its context. It has no background: until the first frame the screen stays as it is.
CreatedWindow CreateOverlayWindow(::Display* display, const WindowGeometry& geometry, SurfaceKind surfaceKind)
{
    ::Window const root = DefaultRootWindow(display);
    const XVisualInfo visual = ChooseOverlayVisual(display, surfaceKind);

    XSetWindowAttributes attributes = {};
    attributes.event_mask = s_eventMask;
    attributes.override_redirect = True;
    attributes.background_pixmap = None;
    attributes.border_pixel = 0;
    attributes.colormap = XCreateColormap(display, root, visual.visual, AllocNone);
    return {XCreateWindow(display, root, geometry.position.x, geometry.position.y, geometry.size.width,
                          geometry.size.height, 0, visual.depth, InputOutput, visual.visual,
                          CWEventMask | CWOverrideRedirect | CWBackPixmap | CWBorderPixel | CWColormap, &attributes),
            attributes.colormap};
}

CreatedWindow CreateOrdinaryWindow(::Display* display, const WindowGeometry& geometry)
{
    XSetWindowAttributes attributes = {};
    attributes.event_mask = s_eventMask;
    attributes.background_pixel = BlackPixel(display, DefaultScreen(display));
    return {XCreateWindow(display, DefaultRootWindow(display), geometry.position.x, geometry.position.y,
                          geometry.size.width, geometry.size.height, 0, CopyFromParent, InputOutput, CopyFromParent,
                          CWEventMask | CWBackPixel, &attributes),
            None};
}

CreatedWindow CreateXWindow(::Display* display, const WindowTraits& traits, const WindowGeometry& geometry,
                            SurfaceKind surfaceKind)
{
    if (traits.isInputOnly)
        return CreateInputOnlyWindow(display);
    return traits.isOverrideRedirect ? CreateOverlayWindow(display, geometry, surfaceKind)
                                     : CreateOrdinaryWindow(display, geometry);
}

/// Sets the arrow as the window's cursor. A server without cursor fonts keeps its own picture.
void SetArrowCursor(::Display* display, ::Window window)
{
    const XErrorScope scope(display);
    ::Cursor const arrow = XCreateFontCursor(display, XC_left_ptr);
    XDefineCursor(display, window, arrow);
    XFreeCursor(display, arrow);
}

/// Window managers map windows with a delay.
void WaitUntilViewable(::Display* display, ::Window window)
{
    constexpr std::int64_t patience = 1'000'000'000;
    constexpr std::int64_t interval = 2'000'000;
    const std::int64_t begin = System::Time::GetMonotonicNanoseconds();
    XWindowAttributes attributes = {};
    while (XGetWindowAttributes(display, window, &attributes) != 0 && attributes.map_state != IsViewable &&
           System::Time::GetMonotonicNanoseconds() - begin < patience)
        System::Time::Sleep(interval);
}

} // namespace

Window::Window(System::Desktop::Window& owner) : m_owner(owner)
{
}

Window::~Window() = default;

// X11 has no window classes; the class name becomes the WM_CLASS of the window.
bool Window::Register(const char* /*className*/)
{
    return true;
}

void Window::Unregister(const char* /*className*/)
{
}

NativeWindow Window::Create(const WindowDescription& description)
{
    const WindowTraits& traits = GetWindowTraits(description.type);
    ::Display* const display = GetXDisplay();
    XErrorScope scope(display);
    if (scope.HasFailed())
        return ReportFailedCreation(scope.GetErrorText());
    if (!traits.isInputOnly && !FitsProtocol(description.position, description.size))
        return ReportFailedCreation(fmt::format("The X server can't show a window of {} x {} pixels at {}, {}",
                                                description.size.width, description.size.height, description.position.x,
                                                description.position.y));

    const WindowGeometry geometry{description.position, description.size};
    const CreatedWindow created = CreateXWindow(display, traits, geometry, description.surfaceKind);
    m_native = std::make_unique<Native>(m_owner, description, display, created.window, created.colormap);
    SetWindowHints(display, created.window, description.name, traits, geometry);
    if (scope.HasFailed())
    {
        m_native.reset();
        return ReportFailedCreation(scope.GetErrorText());
    }
    // An overlay that no event finds would hold all input and answer none.
    if (Native::Find(display, created.window) == nullptr)
    {
        m_native.reset();
        return ReportFailedCreation("There is no memory to find it by");
    }
    if (!traits.isInputOnly)
        SetArrowCursor(display, created.window);

    m_owner.DeliverPlain(WindowEventType::Created);
    const auto handle = static_cast<NativeWindow>(created.window);
    if (!m_owner.OnNativeWindowCreated(handle))
    {
        m_native.reset();
        return NativeWindow::None;
    }
    return handle;
}

void Window::Destroy()
{
    m_native.reset();
}

void Window::Show()
{
    const WindowTraits& traits = GetWindowTraits(m_owner.GetType());
    if (!m_native || !m_native->IsUsable() || traits.isInputOnly)
        return;
    SetStateHints(m_native->display, m_native->id, traits);
    XMapRaised(m_native->display, m_native->id);
    XSync(m_native->display, False);
    if (!traits.isOverrideRedirect)
        WaitUntilViewable(m_native->display, m_native->id);
    m_native->claim.Resume();
}

void Window::Hide()
{
    if (!m_native || !m_native->IsUsable())
        return;
    m_native->claim.Suspend();
    m_native->keys.LetGo();
    // Also informs a window manager that the window is to be withdrawn rather than iconified.
    XWithdrawWindow(m_native->display, m_native->id, DefaultScreen(m_native->display));
    XSync(m_native->display, False);
}

void Window::SetTitle(const std::string& title)
{
    if (m_native && m_native->IsUsable())
        SetWindowTitle(m_native->display, m_native->id, title);
}

void Window::SetClickThrough(bool enabled)
{
    if (!m_native || !m_native->IsUsable())
        return;
    ::Display* const display = m_native->display;
    const XserverRegion nothing = XFixesCreateRegion(display, nullptr, 0);
    XFixesSetWindowShapeRegion(display, m_native->id, ShapeInput, 0, 0,
                               enabled ? nothing : static_cast<XserverRegion>(None));
    XFixesDestroyRegion(display, nothing);
    SetInputHint(display, m_native->id, !enabled);
    if (enabled)
    {
        m_native->claim.End();
        m_native->keys.LetGo();
    }
    XFlush(display);
}

// On X11 no sender waits for a client's answer.
void Window::AnswerOthers()
{
}

void Window::BringToFront()
{
    if (!m_native || !m_native->IsUsable())
        return;
    XRaiseWindow(m_native->display, m_native->id);
    if (m_owner.GetType() == WindowType::Overlay)
        m_native->claim.Begin();
    else if (m_owner.GetType() != WindowType::MessageOnly)
        RequestActivation(m_native->display, m_native->id);
    XFlush(m_native->display);
}

} // namespace Orvik::Desktops::X11
