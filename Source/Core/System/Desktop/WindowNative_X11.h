#pragma once

// Private to the X11 half.

#include "Core/System/Desktop/InputClaim_X11.h"
#include "Core/System/Desktop/PointerInput_X11.h"
#include "Core/System/Desktop/PressedKeys.h"
#include "Core/System/Desktop/RateLimit.h"
#include "Core/System/Desktop/Window.h"
#include "Core/System/Math/Point.h"
#include "Core/System/Platform/Headers/X11Headers.h"

#include <optional>

namespace Orvik::System::Desktop
{

/// The X window of a `Window`. It gives itself back: while there is a connection, nothing of it is left on the server
/// when the object goes.
struct Window::Native
{
    Native(Window& owner, ::Display* connection, ::Window created, Colormap map);
    ~Native();
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    /// The window with that id, or null if it isn't one of ours.
    [[nodiscard]] static Native* Find(::Display* display, ::Window window);

    /// Hands an event to the window it is for; what is for none goes to `pumping`.
    static void Dispatch(XEvent& event, const EventData& data, Native& pumping);

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

    Window& window;
    ::Display* display;
    ::Window id;
    Colormap colormap; ///< `None` if the default one is used
    InputClaim claim;
    PressedKeys keys;
    std::optional<Math::Point> pointer; ///< where the last motion event was, if there was one
    Time pointerTime = 0;               ///< and when, by the server's clock
    Math::Point position;
    WindowSize size;
    RateLimit raises;
    bool hasDetectableRepeat = false;
    int layoutChangeEvent = 0; ///< the number of XKB's events, 0 without XKB
    int screenChangeEvent = 0; ///< the number of that RandR event, 0 without RandR
};

} // namespace Orvik::System::Desktop
