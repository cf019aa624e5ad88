#include "Desktops/Wayland/PointerDevice.h"

#include <cmath>
#include <relative-pointer-unstable-v1-client-protocol.h>
#include <utility>
#include <wayland-client.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// What a turn of a wheel by one notch comes to, in the units of the protocol's axes.
constexpr double s_notchDistance = 15.0;

SurfaceVector ToVector(wl_fixed_t x, wl_fixed_t y)
{
    return {wl_fixed_to_double(x), wl_fixed_to_double(y)};
}

} // namespace

/// The protocol's events, handed to the device.
struct PointerListener
{
    static PointerDevice& Get(void* data) { return *static_cast<PointerDevice*>(data); }

    static void OnEnter(void* data, wl_pointer* /*pointer*/, std::uint32_t serial, wl_surface* surface, wl_fixed_t x,
                        wl_fixed_t y)
    {
        Get(data).OnEnter(serial, surface, ToVector(x, y));
    }
    static void OnLeave(void* data, wl_pointer* /*pointer*/, std::uint32_t /*serial*/, wl_surface* /*surface*/)
    {
        Get(data).OnLeave();
    }
    static void OnMotion(void* data, wl_pointer* /*pointer*/, std::uint32_t /*time*/, wl_fixed_t x, wl_fixed_t y)
    {
        Get(data).OnMotion(ToVector(x, y));
    }
    static void OnButton(void* data, wl_pointer* /*pointer*/, std::uint32_t /*serial*/, std::uint32_t /*time*/,
                         std::uint32_t button, std::uint32_t state)
    {
        Get(data).OnButton(button, state == WL_POINTER_BUTTON_STATE_PRESSED);
    }
    static void OnAxis(void* data, wl_pointer* /*pointer*/, std::uint32_t /*time*/, std::uint32_t axis,
                       wl_fixed_t value)
    {
        Get(data).OnAxis(axis, wl_fixed_to_double(value));
    }
    static void OnFrame(void* data, wl_pointer* /*pointer*/) { Get(data).OnFrame(); }
    static void OnAxisSource(void* /*data*/, wl_pointer* /*pointer*/, std::uint32_t /*source*/) {}
    static void OnAxisStop(void* /*data*/, wl_pointer* /*pointer*/, std::uint32_t /*time*/, std::uint32_t /*axis*/) {}
    static void OnAxisDiscrete(void* data, wl_pointer* /*pointer*/, std::uint32_t axis, std::int32_t steps)
    {
        Get(data).OnNotches(axis, -static_cast<float>(steps));
    }
    static void OnAxisValue120(void* data, wl_pointer* /*pointer*/, std::uint32_t axis, std::int32_t value)
    {
        constexpr float notch = 120.0F;
        Get(data).OnNotches(axis, -static_cast<float>(value) / notch);
    }
    static void OnRelativeMotion(void* data, zwp_relative_pointer_v1* /*relative*/, std::uint32_t /*timeHigh*/,
                                 std::uint32_t /*timeLow*/, wl_fixed_t x, wl_fixed_t y, wl_fixed_t /*plainX*/,
                                 wl_fixed_t /*plainY*/)
    {
        Get(data).OnRelativeMotion(ToVector(x, y));
    }

    /// Newer libraries have more events. A pointer of this version gets none of them.
    static wl_pointer_listener MakePointer()
    {
        wl_pointer_listener listener = {};
        listener.enter = &OnEnter;
        listener.leave = &OnLeave;
        listener.motion = &OnMotion;
        listener.button = &OnButton;
        listener.axis = &OnAxis;
        listener.frame = &OnFrame;
        listener.axis_source = &OnAxisSource;
        listener.axis_stop = &OnAxisStop;
        listener.axis_discrete = &OnAxisDiscrete;
        listener.axis_value120 = &OnAxisValue120;
        return listener;
    }
    static constexpr zwp_relative_pointer_v1_listener s_relative = {.relative_motion = &OnRelativeMotion};
};

PointerDevice::PointerDevice(wl_seat* seat, zwp_relative_pointer_manager_v1* relative, InputQueue& queue)
    : m_pointer(wl_seat_get_pointer(seat)),
      m_queue(queue),
      m_hasFrames(wl_pointer_get_version(m_pointer) >= WL_POINTER_FRAME_SINCE_VERSION)
{
    static const wl_pointer_listener s_listener = PointerListener::MakePointer();
    wl_pointer_add_listener(m_pointer, &s_listener, this);
    if (relative == nullptr)
        return;
    m_relative = zwp_relative_pointer_manager_v1_get_relative_pointer(relative, m_pointer);
    zwp_relative_pointer_v1_add_listener(m_relative, &PointerListener::s_relative, this);
}

PointerDevice::~PointerDevice()
{
    if (m_relative != nullptr)
        zwp_relative_pointer_v1_destroy(m_relative);
    if (wl_pointer_get_version(m_pointer) >= WL_POINTER_RELEASE_SINCE_VERSION)
        wl_pointer_release(m_pointer);
    else
        wl_pointer_destroy(m_pointer);
}

void PointerDevice::SetVisible(bool isVisible)
{
    m_isVisible = isVisible;
    HidePicture();
}

void PointerDevice::HidePicture()
{
    if (!m_isVisible && m_focus != nullptr)
        wl_pointer_set_cursor(m_pointer, m_entrySerial, nullptr, 0, 0);
}

void PointerDevice::Forget(const wl_surface* surface)
{
    if (m_focus == surface)
        m_focus = nullptr;
}

void PointerDevice::OnEnter(std::uint32_t serial, wl_surface* surface, const SurfaceVector& place)
{
    m_focus = surface;
    m_entrySerial = serial;
    m_frame.place = place;
    m_frame.isEntry = true;
    HidePicture();
    EndEvent();
}

// What came before in the same group was for the surface that is left.
void PointerDevice::OnLeave()
{
    OnFrame();
    m_focus = nullptr;
}

void PointerDevice::OnMotion(const SurfaceVector& place)
{
    m_frame.place = place;
    EndEvent();
}

// Several devices' ways may be of one group.
void PointerDevice::OnRelativeMotion(const SurfaceVector& way)
{
    const SurfaceVector before = m_frame.relative.value_or(SurfaceVector());
    m_frame.relative = SurfaceVector{before.x + way.x, before.y + way.y};
}

// What is pressed is pressed where the pointer is by then.
void PointerDevice::OnButton(std::uint32_t button, bool isPressed)
{
    OnFrame();
    if (m_focus != nullptr)
        m_queue.push_back({.kind = InputKind::Button, .surface = m_focus, .code = button, .isPressed = isPressed});
}

void PointerDevice::OnAxis(std::uint32_t axis, double distance)
{
    if (axis == WL_POINTER_AXIS_VERTICAL_SCROLL)
        m_frame.distance += distance;
    EndEvent();
}

void PointerDevice::OnNotches(std::uint32_t axis, float notches)
{
    if (axis == WL_POINTER_AXIS_VERTICAL_SCROLL)
        m_frame.notches += notches;
}

void PointerDevice::EndEvent()
{
    if (!m_hasFrames)
        OnFrame();
}

void PointerDevice::OnFrame()
{
    const Frame frame = std::exchange(m_frame, Frame());
    if (m_focus == nullptr)
        return;
    if (frame.place)
    {
        m_queue.push_back({.kind = frame.isEntry ? InputKind::Entry : InputKind::Motion,
                           .surface = m_focus,
                           .place = *frame.place,
                           .relative = frame.relative,
                           .isPointing = m_hasFrames && m_relative != nullptr && !frame.relative});
    }
    else if (frame.relative)
        m_queue.push_back({.kind = InputKind::Push, .surface = m_focus, .relative = frame.relative});
    // A wheel that counts its notches reports the distance as well.
    const float notches = frame.notches != 0.0F ? frame.notches : static_cast<float>(-frame.distance / s_notchDistance);
    if (notches != 0.0F)
        m_queue.push_back({.kind = InputKind::Wheel, .surface = m_focus, .notches = notches});
}

} // namespace Orvik::Desktops::Wayland
