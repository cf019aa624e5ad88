#include "Core/System/Desktop/PointerEvent.h"
#include "Core/System/Log/LogSite.h"
#include "Desktops/X11/KeyMap.h"
#include "Desktops/X11/WindowHints.h"
#include "Desktops/X11/WindowNative.h"
#include "Desktops/X11/XConnection.h"

#include <X11/XKBlib.h>
#include <X11/Xresource.h>
#include <X11/extensions/Xrandr.h>

namespace Orvik::Desktops::X11
{
namespace
{

// An overlay that something covers raises itself. So many raises in that time mean that the other window does the same:
// then the overlay stops.
constexpr std::uint32_t s_raiseCount = 6;
constexpr std::int64_t s_raisePeriod = 10'000'000'000;

// Finding out what covers the overlay waits for the server, so it is done at most so often in that time.
constexpr std::uint32_t s_lookCount = 8;
constexpr std::int64_t s_lookPeriod = 200'000'000;

/// The key under which the connection keeps the windows.
XContext GetRegistry()
{
    static const XContext s_registry = XUniqueContext();
    return s_registry;
}

bool EnableDetectableRepeat(::Display* display)
{
    Bool isSupported = False;
    return XkbSetDetectableAutoRepeat(display, True, &isSupported) != False && isSupported != False;
}

/// Requests changes of the keyboard's layout: the core event doesn't reach a client that uses XKB, as detectable repeat
/// does. Returns the number of XKB's events, 0 without XKB.
int SelectLayoutChanges(::Display* display)
{
    int firstEvent = 0;
    if (XkbQueryExtension(display, nullptr, &firstEvent, nullptr, nullptr, nullptr) == False)
        return 0;
    constexpr unsigned long events = XkbMapNotifyMask | XkbNewKeyboardNotifyMask;
    XkbSelectEvents(display, XkbUseCoreKbd, events, events);
    return firstEvent;
}

/// Makes Xlib read the layout again. False if the event is about something else.
bool FollowLayout(XEvent& event, int xkbEvent)
{
    if (event.type == MappingNotify)
    {
        XRefreshKeyboardMapping(&event.xmapping);
        return true;
    }
    if (xkbEvent == 0 || event.type != xkbEvent)
        return false;
    XkbRefreshKeyboardMapping(&reinterpret_cast<XkbEvent&>(event).map);
    return true;
}

/// Requests changes of the screens' layout. Returns the number of that event, 0 without RandR.
int SelectScreenChanges(::Display* display, ::Window window)
{
    int firstEvent = 0;
    int ignored = 0;
    if (XRRQueryExtension(display, &firstEvent, &ignored) == False)
        return 0;
    XRRSelectInput(display, window, RRScreenChangeNotifyMask);
    return firstEvent + RRScreenChangeNotify;
}

/// The position in a core event of a key or a button.
template <typename CoreEvent>
PointerMotion GetPlace(const CoreEvent& event)
{
    return {event.window, {event.x, event.y}, {event.x_root, event.y_root}, event.serial};
}

} // namespace

Window::Native::Native(System::Desktop::Window& owner, const WindowDescription& description, ::Display* connection,
                       ::Window created, Colormap map)
    : window(owner),
      display(connection),
      id(created),
      colormap(map),
      claim(connection, created),
      position(description.position),
      size(description.size),
      raises(s_raiseCount, s_raisePeriod),
      stackLooks(s_lookCount, s_lookPeriod)
{
    XSaveContext(display, id, GetRegistry(), reinterpret_cast<XPointer>(this));
    if (description.type == WindowType::MessageOnly)
        return;
    hasDetectableRepeat = EnableDetectableRepeat(display);
    layoutChangeEvent = SelectLayoutChanges(display);
    screenChangeEvent = SelectScreenChanges(display, id);
    PointerInput::GetInstance().Select(display, id);
    if (description.type == WindowType::Overlay)
        XSelectInput(display, DefaultRootWindow(display), SubstructureNotifyMask);
}

Window::Native::~Native()
{
    if (!IsUsable())
        return;
    XDeleteContext(display, id, GetRegistry());
    // Another client may have destroyed the window.
    const XErrorScope scope(display);
    claim.End();
    if (window.GetType() == WindowType::Overlay)
        XSelectInput(display, DefaultRootWindow(display), NoEventMask);
    XDestroyWindow(display, id);
    if (colormap != None)
        XFreeColormap(display, colormap);
}

Window::Native* Window::Native::Find(::Display* display, ::Window window)
{
    XPointer found = nullptr;
    if (XFindContext(display, window, GetRegistry(), &found) != 0)
        return nullptr;
    return reinterpret_cast<Native*>(found);
}

bool Window::Native::IsUsable() const
{
    return GetXDisplay() == display;
}

void Window::Native::Dispatch(XEvent& event, const EventData& data, Native& pumping)
{
    if (FollowLayout(event, pumping.layoutChangeEvent))
        return;
    if (PointerInput::GetInstance().IsInputEvent(event))
        pumping.HandleInput(data);
    else if (event.xany.window == DefaultRootWindow(pumping.display))
        pumping.OnStackChange(event);
    else if (Native* const native = Find(pumping.display, event.xany.window))
        native->Handle(event);
}

void Window::Native::Handle(XEvent& event)
{
    // clang-format off
    switch (event.type)
    {
    case KeyPress: OnKeyPress(event.xkey); return;
    case KeyRelease: OnKeyRelease(event.xkey); return;
    case ButtonPress: OnCoreButton(event.xbutton, true); return;
    case ButtonRelease: OnCoreButton(event.xbutton, false); return;
    case FocusOut: OnFocusOut(event.xfocus); return;
    case MapNotify: OnMap(); return;
    case DestroyNotify: window.DeliverClose(); return;
    case ConfigureNotify: OnConfigure(event.xconfigure); return;
    case Expose: OnExpose(event.xexpose); return;
    case ClientMessage: OnClientMessage(event.xclient); return;
    default: break;
    }
    // clang-format on
    if (screenChangeEvent != 0 && event.type == screenChangeEvent)
        OnScreenChange(event);
}

// Events of the devices themselves name no window, so the window that pumps takes them.
void Window::Native::HandleInput(const EventData& data)
{
    PointerInput& input = PointerInput::GetInstance();
    if (const auto* const motion = data.Get<XIDeviceEvent>(XI_Motion))
    {
        if (Native* const native = Find(display, motion->event))
            native->OnScroll(*motion);
    }
    else if (const auto* const press = data.Get<XIDeviceEvent>(XI_ButtonPress))
        OnInputButton(*press, true);
    else if (const auto* const release = data.Get<XIDeviceEvent>(XI_ButtonRelease))
        OnInputButton(*release, false);
    else if (const auto* const change = data.Get<XIDeviceChangedEvent>(XI_DeviceChanged))
        input.OnDeviceChanged(*change);
    else if (data.Get<XIEnterEvent>(XI_Enter) != nullptr)
        areAxesStale = true;
    else if (data.Get<XIHierarchyEvent>(XI_HierarchyChanged) != nullptr)
    {
        areAxesStale = true;
        NoteChange(WindowEventType::DevicesChanged);
    }
}

void Window::Native::OnMotion(const PointerMotion& motion)
{
    pointer = motion.inWindow;
    pointerSerial = motion.serial;
    const System::Device::Cursor::PointerEventScope scope(motion.onScreen);
    window.DeliverMouseMove(motion.inWindow.x, motion.inWindow.y);
}

// A motion by the program itself may have been handled before an event that is older: the event's place is out of date
// then. The order of the requests decides, because the server's clock only counts milliseconds.
void Window::Native::FollowPointer(const PointerMotion& place)
{
    if (pointer && place.inWindow != *pointer && place.serial >= pointerSerial)
        OnMotion(place);
}

void Window::Native::OnScroll(const XIDeviceEvent& event)
{
    const float notches = PointerInput::GetInstance().TakeNotches(event);
    if (notches != 0.0F)
        window.DeliverMouseWheel(notches);
    FollowPointer(GetPlace(event));
}

void Window::Native::OnInputButton(const XIDeviceEvent& event, bool pressed)
{
    Native* const native = Find(display, event.event);
    if (native == nullptr || PointerInput::GetInstance().IsEmulatedWheel(event))
        return;
    native->FollowPointer(GetPlace(event));
    native->OnButton(static_cast<unsigned int>(event.detail), pressed);
}

void Window::Native::OnCoreButton(const XButtonEvent& event, bool pressed)
{
    FollowPointer(GetPlace(event));
    OnButton(event.button, pressed);
}

// Buttons 4 and 5 are the notches of a wheel; the others beyond the third are ignored.
void Window::Native::OnButton(unsigned int button, bool pressed)
{
    if (button == Button1 || button == Button3)
        window.DeliverMouseButton(static_cast<std::uint8_t>(button), pressed);
    else if (button == Button4 && pressed)
        window.DeliverMouseWheel(1.0F);
    else if (button == Button5 && pressed)
        window.DeliverMouseWheel(-1.0F);
}

void Window::Native::OnKeyPress(const XKeyEvent& event)
{
    const KeyCode key = TranslateKey(event);
    if (key == KeyCode::Undefined)
    {
        OnUndefinedKey(event);
        return;
    }
    const auto physicalKey = static_cast<std::uint8_t>(event.keycode);
    const bool isRepeat = keys.IsDown(physicalKey);
    keys.Press(physicalKey, key);
    const XKeyEvent newest = isRepeat ? SkipToNewest(event) : event;
    FollowPointer(GetPlace(newest));
    window.DeliverKey(key, true);
}

void Window::Native::OnKeyRelease(const XKeyEvent& event)
{
    if (!hasDetectableRepeat && PrepareInput(QueuedAfterReading))
    {
        XEvent next = {};
        XPeekEvent(display, &next);
        if (IsRepeatPair(event, next))
            return;
    }
    const KeyCode key = keys.Release(static_cast<std::uint8_t>(event.keycode), TranslateKey(event));
    if (key == KeyCode::Undefined)
    {
        OnUndefinedKey(event);
        return;
    }
    FollowPointer(GetPlace(event));
    window.DeliverKey(key, false);
}

void Window::Native::OnUndefinedKey(const XKeyEvent& event) const
{
    System::Log::Write(System::Log::s_system, System::Log::MessageTypeID::Warning,
                       "Found undefined virtual key: ", GetUnshiftedSymbol(event));
}

// While the keyboard is grabbed, releases come here wherever the focus is.
void Window::Native::OnFocusOut(const XFocusChangeEvent& event)
{
    const bool isRealLoss =
        event.detail == NotifyAncestor || event.detail == NotifyNonlinear || event.detail == NotifyNonlinearVirtual;
    if (isRealLoss && !claim.HoldsKeyboard())
        keys.LetGo();
}

void Window::Native::OnMap()
{
    NoteChange(WindowEventType::Resized);
    NoteChange(WindowEventType::Moved);
}

void Window::Native::OnConfigure(const XConfigureEvent& event)
{
    const System::Math::Point newPosition{event.x, event.y};
    const WindowSize newSize{static_cast<std::uint32_t>(event.width), static_cast<std::uint32_t>(event.height)};
    const bool isMoved = newPosition != position;
    const bool isResized = newSize.width != size.width || newSize.height != size.height;
    position = newPosition;
    size = newSize;
    if (isMoved)
        NoteChange(WindowEventType::Moved);
    if (isResized)
        NoteChange(WindowEventType::Resized);
}

// An exposure comes in pieces that count down; the whole window is drawn once.
void Window::Native::OnExpose(const XExposeEvent& event)
{
    if (event.count == 0)
        NoteChange(WindowEventType::Paint);
}

void Window::Native::OnStackChange(const XEvent& event)
{
    const bool isForeign = (event.type == MapNotify && event.xmap.window != id) ||
                           (event.type == ConfigureNotify && event.xconfigure.window != id);
    isStackChanged = isStackChanged || isForeign;
}

void Window::Native::OnClientMessage(const XClientMessageEvent& event)
{
    if (IsDeleteRequest(event))
        window.DeliverClose();
}

void Window::Native::OnScreenChange(XEvent& event)
{
    XRRUpdateConfiguration(&event);
    NoteChange(WindowEventType::DisplayChanged);
}

} // namespace Orvik::Desktops::X11
