#pragma once

// X11's own.

#include "Core/System/Desktop/PressedKeys.h"
#include "Core/System/Types/Point.h"
#include "Desktops/RateLimit.h"
#include "Desktops/X11/InputClaim.h"
#include "Desktops/X11/PointerInput.h"
#include "Desktops/X11/Window.h"
#include "Desktops/X11/X11Headers.h"

#include <optional>
#include <vector>

namespace Orvik::Desktops::X11
{

using System::Desktop::KeyCode;
using System::Desktop::WindowEventType;

/// The X window of a window. It gives itself back: while there is a connection, nothing of it is left on the server
/// when the object goes.
struct Window::Native
{
    Native(System::Desktop::Window& owner, const WindowDescription& description, ::Display* connection,
           ::Window created, Colormap map);
    ~Native();
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    /// The window with that id, or null if it isn't one of ours.
    [[nodiscard]] static Native* Find(::Display* display, ::Window window);

    /// Hands an event to the window it is for; what is for none goes to `pumping`.
    static void Dispatch(XEvent& event, const EventData& data, Native& pumping);

    /// Handles what stands in the queue ahead of the next input and isn't input itself, however much it is: other
    /// programs make it, and it mustn't keep input waiting. What it changes is noted, not delivered. Looks at no more
    /// events than there are at the call, by Xlib's `mode` of counting them. Whether an input is at the front.
    bool PrepareInput(int mode);

    /// Whether the next message has anything to do.
    [[nodiscard]] bool HasWork();

    /// Nanoseconds until there is something to do that no event of the server announces; less than 0 if there isn't.
    [[nodiscard]] std::int64_t GetTimeToWork() const;

    /// Takes the input at the front of the queue and delivers it.
    void DeliverInput();

    /// Delivers what `PrepareInput` has noted, for this window and others.
    void DeliverChanges();

    /// Comes back to the front if other windows have changed and one of them covers this one.
    void FollowStack();

    /// Goes on to the newest of the motions that come before any other input, for the same window. The window sees
    /// where the pointer is and not where it was, however fast the mouse reports.
    [[nodiscard]] PointerMotion SkipToNewest(PointerMotion motion);

    /// Goes on to the newest of a held key's repeats that come before any other input. Where drawing is slower than the
    /// key, they would pile up and go on for long after its release.
    [[nodiscard]] XKeyEvent SkipToNewest(XKeyEvent repeat);

    /// Delivers the next release of a key that was let go. False if there is none.
    bool DeliverQueuedRelease();

    /// Delivers the newest of the motions that wait, ahead of what waits before them. False if there is none.
    bool DeliverQueuedMotion();

    void OnMotion(const PointerMotion& motion);

    /// What is pressed is pressed at its own place, also where no motion has told of it.
    void FollowPointer(const PointerMotion& place);
    void FollowPointerToKey(const PointerMotion& place);

    /// Whether the connection still stands.
    [[nodiscard]] bool IsUsable() const;

    void Handle(XEvent& event);
    void HandleInput(const EventData& data);
    void OnKeyPress(const XKeyEvent& event);
    void OnKeyRelease(const XKeyEvent& event);
    void OnUndefinedKey(const XKeyEvent& event) const;
    void OnInputButton(const XIDeviceEvent& event, bool pressed);
    void OnCoreButton(const XButtonEvent& event, bool pressed);
    void OnButton(unsigned int button, bool pressed);
    void OnScroll(const XIDeviceEvent& event);
    void OnFocusOut(const XFocusChangeEvent& event);
    void OnMap();
    void OnConfigure(const XConfigureEvent& event);
    void OnExpose(const XExposeEvent& event);
    void OnStackChange(const XEvent& event);
    void OnClientMessage(const XClientMessageEvent& event);
    void OnScreenChange(XEvent& event);

    /// Notes a change that the window is to be told of; once is enough, however often it comes.
    void NoteChange(WindowEventType type);
    void NoteChangedWindow(const XEvent& event);
    void TellChanges();

    System::Desktop::Window& window;
    ::Display* display;
    ::Window id;
    Colormap colormap; ///< `None` if the default one is used
    InputClaim claim;
    System::Desktop::PressedKeys keys;
    std::optional<System::Math::Point> pointer; ///< where the last motion event was, if there was one
    unsigned long pointerSerial = 0;            ///< and when, by our requests
    System::Math::Point position;
    WindowSize size;
    std::vector<WindowEventType> changes; ///< noted and not yet told
    std::vector<::Window> changedWindows; ///< others of ours that have changed while this one looked at the queue
    RateLimit raises;
    RateLimit stackLooks;
    bool isStackChanged = false; ///< other windows have, since the last look at them
    bool areAxesStale = false;   ///< the wheels may have been turned elsewhere
    bool hasDetectableRepeat = false;
    int layoutChangeEvent = 0; ///< the number of XKB's events, 0 without XKB
    int screenChangeEvent = 0; ///< the number of that RandR event, 0 without RandR
};

} // namespace Orvik::Desktops::X11
