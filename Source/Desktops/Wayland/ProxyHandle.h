#pragma once

// Wayland's own.

#include <memory>

struct ext_image_capture_source_v1;
struct ext_image_copy_capture_frame_v1;
struct ext_image_copy_capture_session_v1;
struct wl_buffer;
struct wl_callback;
struct wl_region;
struct wl_surface;
struct wp_viewport;
struct zwlr_screencopy_frame_v1;

namespace Orvik::Desktops::Wayland
{

/// Destroys an object of the protocol by the function that is meant for its kind.
struct ProxyDeleter
{
    void operator()(ext_image_capture_source_v1* proxy) const noexcept;
    void operator()(ext_image_copy_capture_frame_v1* proxy) const noexcept;
    void operator()(ext_image_copy_capture_session_v1* proxy) const noexcept;
    void operator()(wl_buffer* proxy) const noexcept;
    void operator()(wl_callback* proxy) const noexcept;
    void operator()(wl_region* proxy) const noexcept;
    void operator()(wl_surface* proxy) const noexcept;
    void operator()(wp_viewport* proxy) const noexcept;
    void operator()(zwlr_screencopy_frame_v1* proxy) const noexcept;
};

/// Owns an object of the protocol. It has to go before the connection does.
template <typename Proxy>
using ProxyHandle = std::unique_ptr<Proxy, ProxyDeleter>;

} // namespace Orvik::Desktops::Wayland
