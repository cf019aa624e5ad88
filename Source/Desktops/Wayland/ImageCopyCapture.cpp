#include "Desktops/Wayland/ImageCopyCapture.h"

#include "Desktops/Wayland/CaptureBuffer.h"
#include "Desktops/Wayland/Session.h"

#include <ext-image-capture-source-v1-client-protocol.h>
#include <ext-image-copy-capture-v1-client-protocol.h>
#include <utility>

namespace Orvik::Desktops::Wayland
{
namespace
{

using SourceHandle = ProxyHandle<ext_image_capture_source_v1>;
using SessionHandle = ProxyHandle<ext_image_copy_capture_session_v1>;
using FrameHandle = ProxyHandle<ext_image_copy_capture_frame_v1>;

/// A kind of picture, as far as it has been said.
struct Constraints
{
    CaptureFormat format;
    bool hasFormat = false; ///< one that can be read
};

/// What pictures the compositor makes. It may say so anew at any time; what it says holds when it is said whole.
struct Offer
{
    Constraints next;
    Constraints current;
    int count = 0; ///< how often it was said
    bool isStopped = false;
};

/// How far a frame has come.
struct FrameState
{
    std::int32_t transform = 0;
    bool isReady = false;
    bool isFailed = false;
    std::uint32_t reason = EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_UNKNOWN;
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
    GetOffer(data).next.format.width = width;
    GetOffer(data).next.format.height = height;
}

// The first is the one that the compositor likes best, but ours needs no conversion.
void OnFormat(void* data, ext_image_copy_capture_session_v1* /*session*/, std::uint32_t format)
{
    Constraints& next = GetOffer(data).next;
    const bool isOurs = format == WL_SHM_FORMAT_XRGB8888 || format == WL_SHM_FORMAT_ARGB8888;
    if (!IsReadable(format) || (next.hasFormat && !isOurs))
        return;
    next.format.format = format;
    next.hasFormat = true;
}

void OnDone(void* data, ext_image_copy_capture_session_v1* /*session*/)
{
    Offer& offer = GetOffer(data);
    offer.current = std::exchange(offer.next, Constraints());
    ++offer.count;
}

void OnFailure(void* data, ext_image_copy_capture_frame_v1* /*frame*/, std::uint32_t reason)
{
    GetState(data).reason = reason;
    GetState(data).isFailed = true;
}

constexpr ext_image_copy_capture_session_v1_listener s_sessionListener = {
    .buffer_size = &OnSize,
    .shm_format = &OnFormat,
    .dmabuf_device = [](void*, ext_image_copy_capture_session_v1*, wl_array*) {},
    .dmabuf_format = [](void*, ext_image_copy_capture_session_v1*, std::uint32_t, wl_array*) {},
    .done = &OnDone,
    .stopped = [](void* data, ext_image_copy_capture_session_v1*) { GetOffer(data).isStopped = true; },
};

constexpr ext_image_copy_capture_frame_v1_listener s_frameListener = {
    .transform = [](void* data, ext_image_copy_capture_frame_v1*, std::uint32_t transform)
    { GetState(data).transform = static_cast<std::int32_t>(transform); },
    .damage = [](void*, ext_image_copy_capture_frame_v1*, std::int32_t, std::int32_t, std::int32_t, std::int32_t) {},
    .presentation_time = [](void*, ext_image_copy_capture_frame_v1*, std::uint32_t, std::uint32_t, std::uint32_t) {},
    .ready = [](void* data, ext_image_copy_capture_frame_v1*) { GetState(data).isReady = true; },
    .failed = &OnFailure,
};

constexpr const char* s_ended = "the compositor has ended the capture of the display; it may be unplugged";

/// How often a frame is asked for whose kind the compositor changes meanwhile.
constexpr int s_mostTries = 3;

/// One frame of a session.
class FrameRequest
{
public:
    FrameRequest(WaylandConnection& connection, ext_image_copy_capture_session_v1* session, const Offer& offer)
        : m_connection(connection),
          m_offer(offer),
          m_count(offer.count),
          m_frame(ext_image_copy_capture_session_v1_create_frame(session))
    {
        ext_image_copy_capture_frame_v1_add_listener(m_frame.get(), &s_frameListener, &m_state);
    }
    ~FrameRequest() = default;
    FrameRequest(const FrameRequest&) = delete;
    FrameRequest& operator=(const FrameRequest&) = delete;

    /// Has the buffer filled with what the display shows now. Else why not.
    [[nodiscard]] Failure Fill(wl_buffer* buffer, const CaptureFormat& format)
    {
        ext_image_copy_capture_frame_v1_attach_buffer(m_frame.get(), buffer);
        ext_image_copy_capture_frame_v1_damage_buffer(m_frame.get(), 0, 0, static_cast<std::int32_t>(format.width),
                                                      static_cast<std::int32_t>(format.height));
        ext_image_copy_capture_frame_v1_capture(m_frame.get());
        if (!m_connection.WaitUntil([this] { return m_state.isReady || m_state.isFailed || m_offer.isStopped; }))
            return "the compositor makes no picture of the display; it may be switched off";
        if (m_state.isReady)
            return std::nullopt;
        if (m_offer.isStopped || m_state.reason == EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_STOPPED)
            return s_ended;
        return "the compositor can't make a picture of the display";
    }

    /// Whether it failed because the compositor now makes pictures of another kind, which it has said by then.
    [[nodiscard]] bool IsOutdated() const
    {
        return m_state.reason == EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_BUFFER_CONSTRAINTS &&
               m_connection.WaitUntil([this] { return m_offer.count != m_count || m_offer.isStopped; });
    }

    [[nodiscard]] std::int32_t GetTransform() const { return m_state.transform; }

private:
    WaylandConnection& m_connection;
    const Offer& m_offer;
    int m_count;
    FrameState m_state;
    FrameHandle m_frame;
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
    if (!connection.WaitUntil([&offer] { return offer.count > 0 || offer.isStopped; }))
        return "the compositor doesn't answer";

    Failure failure;
    for (int count = 0; count < s_mostTries; ++count)
    {
        if (offer.isStopped)
            return count == 0 ? "the compositor refuses the picture of the display" : s_ended;
        if (!offer.current.hasFormat)
            return "the compositor makes pictures of no kind that can be read";
        CaptureFormat format = offer.current.format;
        format.stride = format.width * GetPixelBytes(format.format);
        CaptureBuffer buffer(target);
        if ((failure = buffer.Create(m_session.globals.shm, format, transform)))
            return failure;
        FrameRequest request(connection, session.get(), offer);
        failure = request.Fill(buffer.GetBuffer(), format);
        if (!failure)
            return buffer.Deliver({request.GetTransform(), false});
        if (!request.IsOutdated())
            break;
    }
    return failure;
}

} // namespace Orvik::Desktops::Wayland
