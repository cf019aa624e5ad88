#include "Desktops/Wayland/ProxyHandle.h"

#include <ext-image-capture-source-v1-client-protocol.h>
#include <ext-image-copy-capture-v1-client-protocol.h>
#include <viewporter-client-protocol.h>
#include <wayland-client.h>
#include <wlr-screencopy-unstable-v1-client-protocol.h>

namespace Orvik::Desktops::Wayland
{

void ProxyDeleter::operator()(ext_image_capture_source_v1* proxy) const noexcept
{
    ext_image_capture_source_v1_destroy(proxy);
}

void ProxyDeleter::operator()(ext_image_copy_capture_frame_v1* proxy) const noexcept
{
    ext_image_copy_capture_frame_v1_destroy(proxy);
}

void ProxyDeleter::operator()(ext_image_copy_capture_session_v1* proxy) const noexcept
{
    ext_image_copy_capture_session_v1_destroy(proxy);
}

void ProxyDeleter::operator()(wl_buffer* proxy) const noexcept
{
    wl_buffer_destroy(proxy);
}

void ProxyDeleter::operator()(wl_callback* proxy) const noexcept
{
    wl_callback_destroy(proxy);
}

void ProxyDeleter::operator()(wl_region* proxy) const noexcept
{
    wl_region_destroy(proxy);
}

void ProxyDeleter::operator()(wl_surface* proxy) const noexcept
{
    wl_surface_destroy(proxy);
}

void ProxyDeleter::operator()(wp_viewport* proxy) const noexcept
{
    wp_viewport_destroy(proxy);
}

void ProxyDeleter::operator()(zwlr_screencopy_frame_v1* proxy) const noexcept
{
    zwlr_screencopy_frame_v1_destroy(proxy);
}

} // namespace Orvik::Desktops::Wayland
