#include "Tests/Support/Desktop/XClient.h"

#include "Tests/Support/Desktop/XSession.h"

#include <cstring>
#include <stdexcept>

namespace Orvik::Tests
{
namespace
{

unsigned long Place8Bits(unsigned long level, unsigned long mask)
{
    unsigned int shift = 0;
    while ((mask >> shift & 1) == 0)
        ++shift;
    const unsigned long greatest = mask >> shift;
    return ((level * greatest + 127) / 255) << shift;
}

} // namespace

XClient::XClient() : InputDriver(""), m_display(GetSession().GetDisplay())
{
}

XClient::~XClient()
{
    for (const Atom monitor : m_monitors)
        XRRDeleteMonitor(m_display, GetRoot(), monitor);
    ClearActiveWindow();
    RestoreScreen();
}

bool XClient::GrabKeyboard()
{
    return XGrabKeyboard(m_display, GetRoot(), False, GrabModeAsync, GrabModeAsync, CurrentTime) == GrabSuccess;
}

bool XClient::GrabPointer()
{
    return XGrabPointer(m_display, GetRoot(), False, ButtonPressMask, GrabModeAsync, GrabModeAsync, None, None,
                        CurrentTime) == GrabSuccess;
}

std::vector<std::uint32_t> XClient::ReadScreen()
{
    XWindowAttributes root = {};
    XGetWindowAttributes(m_display, GetRoot(), &root);
    return ReadScreen({0, 0, static_cast<unsigned int>(root.width), static_cast<unsigned int>(root.height)});
}

std::vector<std::uint32_t> XClient::ReadScreen(const Place& place)
{
    XImage* const image =
        XGetImage(m_display, GetRoot(), place.x, place.y, place.width, place.height, AllPlanes, ZPixmap);
    std::vector<std::uint32_t> pixels;
    for (int row = 0; row < image->height; ++row)
    {
        for (int column = 0; column < image->width; ++column)
            pixels.push_back(static_cast<std::uint32_t>(XGetPixel(image, column, row)) & 0xFFFFFFU);
    }
    XDestroyImage(image);
    return pixels;
}

std::vector<::Window> XClient::GetTopWindows()
{
    ::Window root = None;
    ::Window parent = None;
    ::Window* children = nullptr;
    unsigned int count = 0;
    XQueryTree(m_display, GetRoot(), &root, &parent, &children, &count);
    std::vector<::Window> windows(children, children + count);
    XFree(children);
    return windows;
}

std::vector<unsigned long> XClient::GetItems(::Window window, const char* name)
{
    const std::string bytes = GetProperty(window, name, sizeof(unsigned long));
    std::vector<unsigned long> items(bytes.size() / sizeof(unsigned long));
    if (!bytes.empty())
        std::memcpy(items.data(), bytes.data(), bytes.size());
    return items;
}

::Window XClient::AddWindow(const Place& place, unsigned long pixel, ::Window parent, unsigned int border)
{
    const ::Window window = XCreateSimpleWindow(m_display, parent == None ? GetRoot() : parent, place.x, place.y,
                                                place.width, place.height, border, 0, pixel);
    XMapWindow(m_display, window);
    Synchronize();
    return window;
}

::Window XClient::AddUnmanagedWindow(const Place& place, unsigned long pixel)
{
    XSetWindowAttributes attributes = {};
    attributes.override_redirect = True;
    attributes.background_pixel = pixel;
    ::Window const window =
        XCreateWindow(m_display, GetRoot(), place.x, place.y, place.width, place.height, 0, CopyFromParent, InputOutput,
                      CopyFromParent, CWOverrideRedirect | CWBackPixel, &attributes);
    XMapRaised(m_display, window);
    XSync(m_display, False);
    return window;
}

void XClient::HideWindow(::Window window) const
{
    XUnmapWindow(m_display, window);
    Synchronize();
}

void XClient::DestroyWindow(::Window window) const
{
    XDestroyWindow(m_display, window);
    Synchronize();
}

void XClient::SendClientMessage(::Window target, ::Window window, const char* type, long first, long mask)
{
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = GetAtom(type);
    event.xclient.format = 32;
    event.xclient.data.l[0] = first;
    XSendEvent(m_display, target, False, mask, &event);
    XSync(m_display, False);
}

void XClient::SetActiveWindow(::Window window) const
{
    XChangeProperty(m_display, GetRoot(), XInternAtom(m_display, "_NET_ACTIVE_WINDOW", False), XA_WINDOW, 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(&window), 1);
    Synchronize();
}

void XClient::ClearActiveWindow() const
{
    XDeleteProperty(m_display, GetRoot(), XInternAtom(m_display, "_NET_ACTIVE_WINDOW", False));
    Synchronize();
}

void XClient::SetFocus(::Window window) const
{
    XSetInputFocus(m_display, window, RevertToNone, CurrentTime);
    Synchronize();
}

void XClient::Fill(::Window window, const Place& place, std::uint32_t color) const
{
    XGCValues values = {};
    values.foreground = GetPixel(color);
    values.subwindow_mode = ClipByChildren;
    const ::GC context = XCreateGC(m_display, window, GCForeground | GCSubwindowMode, &values);
    XFillRectangle(m_display, window, context, place.x, place.y, place.width, place.height);
    XFreeGC(m_display, context);
    Synchronize();
}

unsigned long XClient::GetPixel(std::uint32_t color) const
{
    const Visual* const visual = DefaultVisual(m_display, DefaultScreen(m_display));
    return Place8Bits(color >> 16 & 0xFF, visual->red_mask) | Place8Bits(color >> 8 & 0xFF, visual->green_mask) |
           Place8Bits(color & 0xFF, visual->blue_mask);
}

RROutput XClient::GetOutput() const
{
    XRRScreenResources* const resources = XRRGetScreenResourcesCurrent(m_display, GetRoot());
    const RROutput output = resources->outputs[0];
    XRRFreeScreenResources(resources);
    return output;
}

void XClient::AddMonitor(const char* name, const Place& place, bool isPrimary, RROutput output)
{
    XRRMonitorInfo* const monitor = XRRAllocateMonitor(m_display, output == None ? 0 : 1);
    monitor->name = XInternAtom(m_display, name, False);
    monitor->primary = isPrimary ? True : False;
    monitor->x = place.x;
    monitor->y = place.y;
    monitor->width = static_cast<int>(place.width);
    monitor->height = static_cast<int>(place.height);
    monitor->mwidth = 100;
    monitor->mheight = 100;
    if (output != None)
        monitor->outputs[0] = output;
    m_monitors.push_back(monitor->name);
    XRRSetMonitor(m_display, GetRoot(), monitor);
    XRRFreeMonitors(monitor);
    Synchronize();
}

void XClient::SetTiming(const char* name, unsigned long dotClock, unsigned int hTotal, unsigned int vTotal,
                        unsigned long flags)
{
    XRRModeInfo mode = {};
    std::string modeName = name;
    mode.width = static_cast<unsigned int>(DisplayWidth(m_display, DefaultScreen(m_display)));
    mode.height = static_cast<unsigned int>(DisplayHeight(m_display, DefaultScreen(m_display)));
    mode.dotClock = dotClock;
    mode.hTotal = hTotal;
    mode.vTotal = vTotal;
    mode.modeFlags = flags;
    mode.name = modeName.data();
    mode.nameLength = static_cast<unsigned int>(modeName.size());
    const RRMode id = XRRCreateMode(m_display, GetRoot(), &mode);
    XRRAddOutputMode(m_display, GetOutput(), id);
    SetOutputMode(id);
}

void XClient::ShrinkScreen(int width, int height)
{
    SetOutputMode(None);
    XRRSetScreenSize(m_display, GetRoot(), width, height, width / 4, height / 4);
    m_isShrunk = true;
    Synchronize();
}

void XClient::RestoreScreen()
{
    if (!m_isShrunk)
        return;
    const int width = DisplayWidth(m_display, DefaultScreen(m_display));
    const int height = DisplayHeight(m_display, DefaultScreen(m_display));
    XRRSetScreenSize(m_display, GetRoot(), width, height, width / 4, height / 4);
    XRRScreenResources* const resources = XRRGetScreenResourcesCurrent(m_display, GetRoot());
    SetOutputMode(resources->modes[0].id);
    XRRFreeScreenResources(resources);
    m_isShrunk = false;
    Synchronize();
}

std::string XClient::GetProperty(::Window window, const char* name, std::size_t itemSize)
{
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(m_display, window, GetAtom(name), 0, 1024, False, AnyPropertyType, &type, &format, &count, &left,
                       &data);
    if (data == nullptr)
        return {};
    const std::string bytes(reinterpret_cast<const char*>(data), count * itemSize);
    XFree(data);
    return bytes;
}

void XClient::SetOutputMode(RRMode mode) const
{
    RROutput output = GetOutput();
    XRRScreenResources* const resources = XRRGetScreenResourcesCurrent(m_display, GetRoot());
    const Status status = XRRSetCrtcConfig(m_display, resources, resources->crtcs[0], CurrentTime, 0, 0, mode,
                                           RR_Rotate_0, mode == None ? nullptr : &output, mode == None ? 0 : 1);
    XRRFreeScreenResources(resources);
    if (status != RRSetConfigSuccess)
        throw std::runtime_error("The server refuses the mode.");
    Synchronize();
}

} // namespace Orvik::Tests
