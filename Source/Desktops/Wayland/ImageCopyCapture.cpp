#include "Desktops/Wayland/ImageCopyCapture.h"

#include "Desktops/Wayland/CaptureBuffer.h"
#include "Desktops/Wayland/Session.h"

#include <ext-image-capture-source-v1-client-protocol.h>
#include <ext-image-copy-capture-v1-client-protocol.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

using SourceHandle = ProxyHandle<ext_image_capture_source_v1>;
using SessionHandle = ProxyHandle<ext_image_copy_capture_session_v1>;
using FrameHandle = ProxyHandle<ext_image_copy_capture_frame_v1>;

/// What pictures the compositor makes.
struct Offer
{
    CaptureFormat format;
    bool hasFormat = false; ///< one that can be read
    bool isDone = false;
    bool isStopped = false;
};

/// How far a frame has come.
struct FrameState
{
    std::int32_t transform = 0;
    bool isReady = false;
    bool isFailed = false;
};

Offer& GetOffer(void* data)
{
    return *static_cast<Offer*>(data);
}

FrameState& GetState(void* data)
{
    return *static_cast<FrameState*>(data);
}

void OnSize(void* data, ext_image_copy_capture_session_v1* /*session*/, std::uint32_t width, std::uint32_t height)
{
    GetOffer(data).format.width = width;
    GetOffer(data).format.height = height;
}

// The first is the one that the compositor likes best, but ours needs no conversion.
void OnFormat(void* data, ext_image_copy_capture_session_v1* /*session*/, std::uint32_t format)
{
    Offer& offer = GetOffer(data);
    const bool isOurs = format == WL_SHM_FORMAT_XRGB8888 || format == WL_SHM_FORMAT_ARGB8888;
    if (!IsReadable(format) || (offer.hasFormat && !isOurs))
        return;
    offer.format.format = format;
    offer.hasFormat = true;
}

constexpr ext_image_copy_capture_session_v1_listener s_sessionListener = {
    .buffer_size = &OnSize,
    .shm_format = &OnFormat,
    .dmabuf_device = [](void*, ext_image_copy_capture_session_v1*, wl_array*) {},
    .dmabuf_format = [](void*, ext_image_copy_capture_session_v1*, std::uint32_t, wl_array*) {},
    .done = [](void* data, ext_image_copy_capture_session_v1*) { GetOffer(data).isDone = true; },
    .stopped = [](void* data, ext_image_copy_capture_session_v1*) { GetOffer(data).isStopped = true; },
};

constexpr ext_image_copy_capture_frame_v1_listener s_frameListener = {
    .transform = [](void* data, ext_image_copy_capture_frame_v1*, std::uint32_t transform)
    { GetState(data).transform = static_cast<std::int32_t>(transform); },
    .damage = [](void*, ext_image_copy_capture_frame_v1*, std::int32_t, std::int32_t, std::int32_t, std::int32_t) {},
    .presentation_time = [](void*, ext_image_copy_capture_frame_v1*, std::uint32_t, std::uint32_t, std::uint32_t) {},
    .ready = [](void* data, ext_image_copy_capture_frame_v1*) { GetState(data).isReady = true; },
    .failed = [](void* data, ext_image_copy_capture_frame_v1*, std::uint32_t) { GetState(data).isFailed = true; },
};

} // namespace

bool ImageCopyCapture::IsOffered()
{
    return m_session.globals.imageCopyCapture != nullptr && m_session.globals.outputCaptureSource != nullptr;
}

Failure ImageCopyCapture::Read(const Output& output, CaptureTarget& target)
{
    constexpr std::uint32_t withoutPointer = 0;
    WaylandConnection& connection = *m_session.connection;
    const std::int32_t transform = output.GetDescription().transform; // the display may go while the answer is awaited
    const SourceHandle source(ext_output_image_capture_source_manager_v1_create_source(
        m_session.globals.outputCaptureSource, output.GetProxy()));
    Offer offer;
    const SessionHandle session(ext_image_copy_capture_manager_v1_create_session(m_session.globals.imageCopyCapture,
                                                                                 source.get(), withoutPointer));
    ext_image_copy_capture_session_v1_add_listener(session.get(), &s_sessionListener, &offer);
    if (!connection.WaitUntil([&offer] { return offer.isDone || offer.isStopped; }))
        return "the compositor doesn't answer";
    if (offer.isStopped || !offer.hasFormat)
        return "the compositor refuses the picture of the display";

    offer.format.stride = offer.format.width * GetPixelBytes(offer.format.format);
    CaptureBuffer buffer(target);
    if (Failure failure = buffer.Create(m_session.globals.shm, offer.format, transform))
        return failure;
    FrameState state;
    const FrameHandle frame(ext_image_copy_capture_session_v1_create_frame(session.get()));
    ext_image_copy_capture_frame_v1_add_listener(frame.get(), &s_frameListener, &state);
    ext_image_copy_capture_frame_v1_attach_buffer(frame.get(), buffer.GetBuffer());
    ext_image_copy_capture_frame_v1_damage_buffer(frame.get(), 0, 0, static_cast<std::int32_t>(offer.format.width),
                                                  static_cast<std::int32_t>(offer.format.height));
    ext_image_copy_capture_frame_v1_capture(frame.get());
    if (!connection.WaitUntil([&state] { return state.isReady || state.isFailed; }))
        return "the compositor makes no picture of the display; it may be switched off";
    if (state.isFailed)
        return "the compositor can't make a picture of the display";
    return buffer.Deliver({state.transform, false});
}

} // namespace Orvik::Desktops::Wayland
