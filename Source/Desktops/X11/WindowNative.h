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

/// The X window of a window. It cleans up after itself: while there is a connection, nothing of it is left on the
/// server when the object goes.
struct Window::Native
{
    Native(System::Desktop::Window& owner, const WindowDescription& description, ::Display* connection,
           ::Window created, Colormap map);
    ~Native();
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    /// The window with that id, or null if it isn't one of ours.
    [[nodiscard]] static Native* Find(::Display* display, ::Window window);

    /// Delivers an event to its window; events without a window go to `pumping`.
    static void Dispatch(XEvent& event, const EventData& data, Native& pumping);

    /// Handles all events before the next input in the queue, however many they are: other programs make them, and they
    /// mustn't keep input waiting. The changes are noted, not delivered. Reads no more events than there are at the
    /// call, counted in Xlib's `mode`. Whether an input is at the front.
    bool PrepareInput(int mode);

    /// Whether the next message has anything to do.
    [[nodiscard]] bool HasWork();

    /// Nanoseconds until there is something to do that no event of the server announces; less than 0 if there is
    /// nothing.
    [[nodiscard]] std::int64_t GetTimeToWork() const;

    /// Takes the input at the front of the queue and delivers it.
    void DeliverInput();

    /// Delivers what `PrepareInput` has noted, for this window and others.
    void DeliverChanges();

    /// Returns to the front if other windows have changed and one of them covers this one.
    void FollowStack();

    /// Skips to the newest of the motions before any other input, for the same window. However fast the mouse reports,
    /// the window gets the pointer's present position and not an old one.
    [[nodiscard]] PointerMotion SkipToNewest(PointerMotion motion);

    /// Skips to the newest of a held key's repeats before any other input. If drawing is slower than the key, the
    /// repeats would pile up and go on long after its release.
    [[nodiscard]] XKeyEvent SkipToNewest(XKeyEvent repeat);

    /// Delivers the next release of a key that was released by us. False if there is none.
    bool DeliverQueuedRelease();

    /// Delivers the newest of the waiting motions, before older events. False if there is none.
    bool DeliverQueuedMotion();

    void OnMotion(const PointerMotion& motion);

    /// A press counts at its own place, even if no motion has reported that place; but not if the pointer has been
    /// moved since then.
    void FollowPointer(const PointerMotion& place);

    /// Whether there still is a connection.
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

    /// Notes a change for the window; repeated changes of a kind are noted once.
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
    std::vector<WindowEventType> changes; ///< noted and not yet delivered
    std::vector<::Window> changedWindows; ///< our other windows that have changed while this one read the queue
    RateLimit raises;
    RateLimit stackLooks;
    bool isStackChanged = false; ///< other windows have changed since the last look at them
    bool areAxesStale = false;   ///< the wheels may have been turned over other windows
    bool hasDetectableRepeat = false;
    int layoutChangeEvent = 0; ///< the number of XKB's events, 0 without XKB
    int screenChangeEvent = 0; ///< the number of that RandR event, 0 without RandR
};

} // namespace Orvik::Desktops::X11
