#include "Desktops/Wayland/WlrScreenCapture.h"

#include "Desktops/Wayland/CaptureBuffer.h"
#include "Desktops/Wayland/Session.h"

#include <wlr-screencopy-unstable-v1-client-protocol.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

using FrameHandle = ProxyHandle<zwlr_screencopy_frame_v1>;

/// How far a frame has come.
struct FrameState
{
    CaptureFormat format;
    bool isFormatKnown = false; ///< and all other kinds of buffer as well
    bool isUpsideDown = false;
    bool isReady = false;
    bool isFailed = false;
};

FrameState& Get(void* data)
{
    return *static_cast<FrameState*>(data);
}

void OnBuffer(void* data, zwlr_screencopy_frame_v1* frame, std::uint32_t format, std::uint32_t width,
              std::uint32_t height, std::uint32_t stride)
{
    Get(data).format = {format, width, height, stride};
    // Before that version there is one kind.
    if (zwlr_screencopy_frame_v1_get_version(frame) < ZWLR_SCREENCOPY_FRAME_V1_BUFFER_DONE_SINCE_VERSION)
        Get(data).isFormatKnown = true;
}

void OnFlags(void* data, zwlr_screencopy_frame_v1* /*frame*/, std::uint32_t flags)
{
    Get(data).isUpsideDown = (flags & ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT) != 0;
}

constexpr zwlr_screencopy_frame_v1_listener s_listener = {
    .buffer = &OnBuffer,
    .flags = &OnFlags,
    .ready = [](void* data, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t, std::uint32_t)
    { Get(data).isReady = true; },
    .failed = [](void* data, zwlr_screencopy_frame_v1*) { Get(data).isFailed = true; },
    .damage = [](void*, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
    .linux_dmabuf = [](void*, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t, std::uint32_t) {},
    .buffer_done = [](void* data, zwlr_screencopy_frame_v1*) { Get(data).isFormatKnown = true; },
};

} // namespace

bool WlrScreenCapture::IsOffered()
{
    return m_session.globals.screencopy != nullptr;
}

Failure WlrScreenCapture::Read(const Output& output, CaptureTarget& target)
{
    constexpr std::int32_t withoutPointer = 0;
    WaylandConnection& connection = *m_session.connection;
    const std::int32_t transform = output.GetDescription().transform; // the display may go while the answer is awaited
    FrameState state;
    const FrameHandle frame(
        zwlr_screencopy_manager_v1_capture_output(m_session.globals.screencopy, withoutPointer, output.GetProxy()));
    zwlr_screencopy_frame_v1_add_listener(frame.get(), &s_listener, &state);
    if (!connection.WaitUntil([&state] { return state.isFormatKnown || state.isFailed; }))
        return "the compositor doesn't answer";
    if (state.isFailed)
        return "the compositor refuses the picture of the display";

    CaptureBuffer buffer(target);
    if (Failure failure = buffer.Create(m_session.globals.shm, state.format, transform))
        return failure;
    zwlr_screencopy_frame_v1_copy(frame.get(), buffer.GetBuffer());
    if (!connection.WaitUntil([&state] { return state.isReady || state.isFailed; }))
        return "the compositor makes no picture of the display; it may be switched off";
    if (state.isFailed)
        return "the compositor can't make a picture of the display";
    return buffer.Deliver({transform, state.isUpsideDown});
}

} // namespace Orvik::Desktops::Wayland
