#include "Desktops/X11/X11Desktop.h"

#include "Core/System/Desktop/DisplayMode.h"
#include "Core/System/Log/LogSite.h"
#include "Desktops/X11/XConnection.h"
#include "Desktops/X11/XHandle.h"

#include <X11/Xatom.h>
#include <X11/extensions/Xrandr.h>
#include <algorithm>
#include <limits>
#include <optional>
#include <span>

namespace Orvik::Desktops::X11
{
namespace
{

using System::Device::Display::ApplyMode;
using System::Device::Display::DisplayMode;
using System::Device::Display::InvalidDisplayId;

using MonitorList = XHandle<XRRMonitorInfo, &XRRFreeMonitors>;
using ScreenResources = XHandle<XRRScreenResources, &XRRFreeScreenResources>;
using OutputInfo = XHandle<XRROutputInfo, &XRRFreeOutputInfo>;
using CrtcInfo = XHandle<XRRCrtcInfo, &XRRFreeCrtcInfo>;

/// Whether the server knows monitors, which came with RandR 1.5.
bool HasMonitors(::Display* display)
{
    int eventBase = 0;
    int errorBase = 0;
    int major = 0;
    int minor = 0;
    return XRRQueryExtension(display, &eventBase, &errorBase) != 0 && XRRQueryVersion(display, &major, &minor) != 0 &&
           (major > 1 || (major == 1 && minor >= 5));
}

/// Hertz, rounded; 0 for a mode without a timing.
std::uint32_t GetRefreshRate(const XRRModeInfo& mode)
{
    const std::uint64_t fields = (mode.modeFlags & RR_Interlace) != 0 ? 2 : 1;
    const std::uint64_t scans = (mode.modeFlags & RR_DoubleScan) != 0 ? 2 : 1;
    const std::uint64_t pixels = std::uint64_t{mode.hTotal} * mode.vTotal * scans;
    if (pixels == 0)
        return 0;
    const std::uint64_t rate = (mode.dotClock * fields + pixels / 2) / pixels;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(rate, std::numeric_limits<std::uint32_t>::max()));
}

/// The rate of the monitor's first output; 0 if it has none, or if the output is switched off.
std::uint32_t GetRefreshRate(::Display* display, XRRScreenResources* resources, const XRRMonitorInfo& monitor)
{
    if (resources == nullptr || monitor.noutput < 1)
        return 0;
    const OutputInfo output(XRRGetOutputInfo(display, resources, monitor.outputs[0]));
    if (output == nullptr || output->crtc == None)
        return 0;
    const CrtcInfo crtc(XRRGetCrtcInfo(display, resources, output->crtc));
    if (crtc == nullptr)
        return 0;
    const std::span modes(resources->modes, static_cast<std::size_t>(std::max(resources->nmode, 0)));
    const auto mode = std::find_if(modes.begin(), modes.end(), [&](const auto& info) { return info.id == crtc->mode; });
    return mode == modes.end() ? 0 : GetRefreshRate(*mode);
}

std::string GetAtomText(::Display* display, Atom atom)
{
    const XHandle<char, &XFree> text(XGetAtomName(display, atom));
    return text == nullptr ? std::string() : std::string(text.get());
}

DisplayMode DescribeMonitor(::Display* display, XRRScreenResources* resources, const XRRMonitorInfo& monitor)
{
    DisplayMode mode;
    mode.name = GetAtomText(display, monitor.name);
    mode.x = monitor.x;
    mode.y = monitor.y;
    mode.width = static_cast<std::uint32_t>(monitor.width);
    mode.height = static_cast<std::uint32_t>(monitor.height);
    mode.refreshRate = GetRefreshRate(display, resources, monitor);
    mode.isPrimary = monitor.primary != 0;
    return mode;
}

/// The monitors that show something, in the server's order. Empty without RandR 1.5.
std::vector<DisplayMode> ListMonitors(::Display* display)
{
    std::vector<DisplayMode> modes;
    if (!HasMonitors(display))
        return modes;
    const XErrorScope errors(display);
    const ::Window root = DefaultRootWindow(display);
    // Reads what the server knows already: asking the outputs again can take seconds and makes screens flicker.
    const ScreenResources resources(XRRGetScreenResourcesCurrent(display, root));
    int count = 0;
    // Includes those that are switched off, so that they count in the numbers of the others.
    const MonitorList monitors(XRRGetMonitors(display, root, False, &count));
    if (monitors == nullptr)
        return modes;
    // One id fewer than fit into 16 bits, because the highest one means no display.
    for (int index = 0; index < count && modes.size() + 1 < InvalidDisplayId; ++index)
    {
        const XRRMonitorInfo& monitor = monitors.get()[index];
        if (monitor.width <= 0 || monitor.height <= 0)
            continue;
        modes.push_back(DescribeMonitor(display, resources.get(), monitor));
        modes.back().deviceIndex = static_cast<std::uint32_t>(index);
    }
    return modes;
}

/// The whole screen as one display, for a server that reports no monitors.
DisplayMode DescribeScreen(::Display* display)
{
    const int screen = DefaultScreen(display);
    DisplayMode mode;
    mode.name = DisplayString(display);
    mode.width = static_cast<std::uint32_t>(DisplayWidth(display, screen));
    mode.height = static_cast<std::uint32_t>(DisplayHeight(display, screen));
    mode.isPrimary = true;
    return mode;
}

/// How the newer ones say what they are.
bool HasXwaylandExtension(::Display* display)
{
    int opcode = 0;
    int event = 0;
    int error = 0;
    return XQueryExtension(display, "XWAYLAND", &opcode, &event, &error) != False;
}

/// And the older ones.
bool IsXwaylandMonitor(const DisplayMode& mode)
{
    return mode.name.starts_with("XWAYLAND");
}

bool IsViewableWindow(::Display* display, ::Window window)
{
    XWindowAttributes attributes = {};
    return XGetWindowAttributes(display, window, &attributes) != 0 && attributes.map_state == IsViewable;
}

/// The window that the window manager reports (EWMH), or None.
::Window GetActiveWindow(::Display* display, ::Window root)
{
    const Atom property = XInternAtom(display, "_NET_ACTIVE_WINDOW", True);
    if (property == None)
        return None;
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = nullptr;
    const int status =
        XGetWindowProperty(display, root, property, 0, 1, False, XA_WINDOW, &type, &format, &count, &remaining, &data);
    const XHandle<unsigned char, &XFree> value(data);
    if (status != Success || value == nullptr || type != XA_WINDOW || format != 32 || count < 1)
        return None;
    // Xlib delivers 32-bit values as longs.
    return *reinterpret_cast<const ::Window*>(value.get());
}

/// The window that the user works in, or None. The window manager's answer counts only while its window is shown.
::Window GetForegroundWindow(::Display* display, ::Window root)
{
    const ::Window active = GetActiveWindow(display, root);
    if (active != None && IsViewableWindow(display, active))
        return active;
    ::Window focus = None;
    int revertTo = 0;
    XGetInputFocus(display, &focus, &revertTo);
    return focus != PointerRoot && focus != None && IsViewableWindow(display, focus) ? focus : None;
}

/// The ancestor of `window` that is a child of the root: the frame, if the window manager made one. None for the root
/// itself and for a window that is gone.
::Window GetFrame(::Display* display, ::Window root, ::Window window)
{
    while (window != root && window != None)
    {
        ::Window ignoredRoot = None;
        ::Window parent = None;
        ::Window* children = nullptr;
        unsigned int count = 0;
        const int status = XQueryTree(display, window, &ignoredRoot, &parent, &children, &count);
        const XHandle<::Window, &XFree> ownedChildren(children);
        if (status == 0)
            return None;
        if (parent == root)
            return window;
        window = parent;
    }
    return None;
}

/// Where the foreground window is on the screen, with frame and border. Empty without one.
std::optional<System::Math::Rectangle> GetForegroundArea(::Display* display)
{
    // Windows may come and go meanwhile.
    const XErrorScope errors(display);
    const ::Window root = DefaultRootWindow(display);
    const ::Window frame = GetFrame(display, root, GetForegroundWindow(display, root));
    if (frame == None)
        return std::nullopt;
    const std::optional<XGeometry> geometry = GetXGeometry(display, frame);
    if (!geometry)
        return std::nullopt;
    const unsigned int borders = 2 * geometry->border;
    return System::Math::Rectangle{geometry->x, geometry->y,
                                   geometry->x + static_cast<std::int32_t>(geometry->width + borders),
                                   geometry->y + static_cast<std::int32_t>(geometry->height + borders)};
}

} // namespace

bool X11Desktop::PrepareDisplays(const System::Log::Context& log)
{
    if (GetXDisplay() != nullptr)
        return true;
    System::Log::Write(log, System::Log::MessageTypeID::Error, "No X server to ask for displays.");
    if (!m_waylandFailure.empty())
        System::Log::Write(log, System::Log::MessageTypeID::Error, "WAYLAND_DISPLAY is set, but ", m_waylandFailure,
                           ".");
    return false;
}

// The windows of a Wayland session aren't on the X server that it runs beside the compositor: a picture of it is black.
Failure X11Desktop::CheckCapture()
{
    ::Display* const display = GetXDisplay();
    if (display == nullptr || (!m_hasXwaylandMonitor && !HasXwaylandExtension(display)))
        return std::nullopt;
    const std::string advice = m_waylandFailure.empty()
                                   ? "Start SnipBench with WAYLAND_DISPLAY set, and ORVIK_DESKTOP not"
                                   : fmt::format("WAYLAND_DISPLAY is set, but {}", m_waylandFailure);
    return fmt::format("This X server is the one of a Wayland session (Xwayland): the screen isn't on it. {}", advice);
}

DisplayList X11Desktop::ListDisplays()
{
    ::Display* const display = GetXDisplay();
    std::vector<DisplayMode> modes = ListMonitors(display);
    if (modes.empty())
        modes.push_back(DescribeScreen(display));
    m_hasXwaylandMonitor = std::any_of(modes.begin(), modes.end(), &IsXwaylandMonitor);
    DisplayList list;
    for (const DisplayMode& mode : modes)
        ApplyMode(mode, list.displays.emplace_back());
    list.foreground = GetForegroundArea(display);
    return list;
}

} // namespace Orvik::Desktops::X11
