#pragma once

// Private to the Wayland units of this folder.

#include <functional>
#include <string>

struct wl_display;
struct wl_output;
struct wl_registry;
struct wl_seat;
struct wl_shm;
struct zwlr_screencopy_manager_v1;
struct zwlr_virtual_pointer_manager_v1;
struct zwp_virtual_keyboard_manager_v1;

namespace Orvik::Tests
{

/// Whether the name of a display is that of a Wayland compositor: the path of its socket. X servers have a number.
[[nodiscard]] bool IsCompositorName(const std::string& displayName);

/// A connection of its own to a compositor, with what it offers for being worked and looked at. All operations throw
/// `std::runtime_error` if the compositor is gone, or doesn't answer within a minute.
class CompositorClient
{
public:
    explicit CompositorClient(const std::string& socket);
    ~CompositorClient();
    CompositorClient(const CompositorClient&) = delete;
    CompositorClient& operator=(const CompositorClient&) = delete;

    /// Returns once the compositor has done all requests so far.
    void Synchronize();
    /// Handles what comes until the condition holds.
    void WaitUntil(const std::function<bool()>& condition);

    [[nodiscard]] int GetWidth() const { return m_width; } ///< of the first output, physical pixels
    [[nodiscard]] int GetHeight() const { return m_height; }

    // Null where the compositor hasn't got it.
    [[nodiscard]] wl_output* GetOutput() const { return m_output; } ///< the first
    [[nodiscard]] wl_seat* GetSeat() const { return m_seat; }
    [[nodiscard]] wl_shm* GetShm() const { return m_shm; }
    [[nodiscard]] zwlr_screencopy_manager_v1* GetScreencopy() const { return m_screencopy; }
    [[nodiscard]] zwlr_virtual_pointer_manager_v1* GetPointers() const { return m_pointers; }
    [[nodiscard]] zwp_virtual_keyboard_manager_v1* GetKeyboards() const { return m_keyboards; }

private:
    friend struct CompositorClientListener;
    void OnGlobal(unsigned name, const std::string& interface);
    void Disconnect();

    wl_display* m_display;
    wl_registry* m_registry = nullptr;
    int m_width = 0;
    int m_height = 0;
    wl_output* m_output = nullptr;
    wl_seat* m_seat = nullptr;
    wl_shm* m_shm = nullptr;
    zwlr_screencopy_manager_v1* m_screencopy = nullptr;
    zwlr_virtual_pointer_manager_v1* m_pointers = nullptr;
    zwp_virtual_keyboard_manager_v1* m_keyboards = nullptr;
};

} // namespace Orvik::Tests
