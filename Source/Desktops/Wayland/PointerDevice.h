#pragma once

// Wayland's own.

#include "Desktops/Wayland/InputEvent.h"

#include <cstdint>

struct wl_pointer;
struct wl_seat;
struct zwp_relative_pointer_manager_v1;
struct zwp_relative_pointer_v1;

namespace Orvik::Desktops::Wayland
{

/// The pointer of a seat: puts what it does into the queue. The main thread.
class PointerDevice
{
public:
    /// `relative` is null where the compositor doesn't report how far devices move. The queue outlives the device.
    PointerDevice(wl_seat* seat, zwp_relative_pointer_manager_v1* relative, InputQueue& queue);
    ~PointerDevice();
    PointerDevice(const PointerDevice&) = delete;
    PointerDevice& operator=(const PointerDevice&) = delete;

    /// Shows no picture of the pointer over our surfaces; or leaves the choice to the compositor from the next entry
    /// on.
    void SetVisible(bool isVisible);

    [[nodiscard]] wl_pointer* GetProxy() const { return m_pointer; }
    /// The surface is about to go.
    void Forget(const wl_surface* surface);

private:
    /// What a group of events of the protocol comes to.
    struct Frame
    {
        std::optional<SurfaceVector> place;
        std::optional<SurfaceVector> relative;
        bool isEntry = false;
        float notches = 0.0F;  ///< of a wheel that counts them
        double distance = 0.0; ///< of one that doesn't
    };

    friend struct PointerListener;
    void OnEnter(std::uint32_t serial, wl_surface* surface, const SurfaceVector& place);
    void OnLeave();
    void OnMotion(const SurfaceVector& place);
    void OnRelativeMotion(const SurfaceVector& way);
    void OnButton(std::uint32_t button, bool isPressed);
    void OnAxis(std::uint32_t axis, double distance);
    void OnNotches(std::uint32_t axis, float notches);
    /// The end of a group.
    void OnFrame();
    /// A seat of an early version has no groups.
    void EndEvent();

    void HidePicture();

    wl_pointer* m_pointer;
    zwp_relative_pointer_v1* m_relative = nullptr;
    InputQueue& m_queue;
    wl_surface* m_focus = nullptr; ///< the surface that the pointer is on, or null
    std::uint32_t m_entrySerial = 0;
    bool m_hasFrames;
    bool m_isVisible = true;
    Frame m_frame;
};

} // namespace Orvik::Desktops::Wayland
