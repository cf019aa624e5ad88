#pragma once

// X11's own.

#include "Core/System/Types/Point.h"
#include "Desktops/ScrollAxes.h"
#include "Desktops/X11/EventData.h"
#include "Desktops/X11/X11Headers.h"

#include <optional>

namespace Orvik::Desktops::X11
{

/// Where the pointer was when an event was made.
struct PointerMotion
{
    ::Window window = None;
    System::Math::Point inWindow; ///< window pixels
    System::Math::Point onScreen; ///< screen pixels
    unsigned long serial = 0;     ///< the last of our requests that the server had handled; never decreases
};

/// The position in an event of XInput 2; it has fractions of a pixel.
[[nodiscard]] PointerMotion GetPlace(const XIDeviceEvent& event);

/// The pointing devices, read by XInput 2 if the server has it (2.1, for wheels that report fractions of a notch), else
/// only by core events. One for the process; it belongs to the thread of the X connection.
class PointerInput
{
public:
    [[nodiscard]] static PointerInput& GetInstance();

    /// Requests the pointer events of a window. Core events are still used if a core grab reports instead.
    void Select(::Display* display, ::Window window);

    [[nodiscard]] bool IsInputEvent(const XEvent& event) const;

    /// Only reads the event, not its data.
    [[nodiscard]] bool IsMotionEvent(const XEvent& event) const;
    [[nodiscard]] bool IsButtonEvent(const XEvent& event) const;

    /// A motion without a turned wheel.
    [[nodiscard]] std::optional<PointerMotion> ReadPlainMotion(const XEvent& event, const EventData& data) const;

    /// The notches of a motion that turns a wheel.
    [[nodiscard]] float TakeNotches(const XIDeviceEvent& event);

    /// Whether a button event only repeats, for old clients, what a scroll axis has reported.
    [[nodiscard]] bool IsEmulatedWheel(const XIDeviceEvent& event) const;

    /// A device has other axes, or another device moves the pointer; the event contains the axes' positions.
    void OnDeviceChanged(const XIDeviceChangedEvent& event);

    /// Reads all axes again: they may have moved unseen.
    void RefreshAxes(::Display* display);

private:
    void Initialize(::Display* display);
    [[nodiscard]] bool HasScroll(const XIDeviceEvent& event) const;

    bool m_isInitialized = false;
    int m_opcode = 0; ///< 0 without the extension
    ScrollAxes m_axes;
};

} // namespace Orvik::Desktops::X11
