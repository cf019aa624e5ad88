#include "Tests/Support/Wayland/CaptureServer.h"

#include "Tests/Support/Wayland/ServedPixels.h"

#include <algorithm>
#include <ext-image-capture-source-v1-server-protocol.h>
#include <ext-image-copy-capture-v1-server-protocol.h>
#include <random>
#include <stdexcept>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>
#include <wayland-server.h>

namespace Orvik::Tests
{

/// All of it is the server's thread, but the constructor and the destructor.
class CaptureServer::Server
{
public:
    Server(const CaptureServer& owner, const std::string& socket)
        : m_owner(owner), m_display(wl_display_create()), m_stop(eventfd(0, EFD_CLOEXEC))
    {
        const CaptureServerOptions& options = m_owner.m_options;
        wl_display_init_shm(m_display);
        for (const auto& kind : options.kinds)
            for (const std::uint32_t format : kind)
                wl_display_add_shm_format(m_display, format);
        wl_global_create(m_display, &wl_output_interface, 4, this, &BindOutput);
        wl_global_create(m_display, &ext_image_copy_capture_manager_v1_interface, 1, this, &BindManager);
        if (options.hasSources)
            wl_global_create(m_display, &ext_output_image_capture_source_manager_v1_interface, 1, this, &BindSources);
        if (wl_display_add_socket(m_display, socket.c_str()) != 0)
        {
            wl_display_destroy(m_display);
            close(m_stop);
            throw std::runtime_error("There can be no socket " + socket + ".");
        }
        m_stopSource =
            wl_event_loop_add_fd(wl_display_get_event_loop(m_display), m_stop, WL_EVENT_READABLE, &OnStop, this);
        m_thread = std::thread([this] { wl_display_run(m_display); });
    }
    ~Server()
    {
        eventfd_write(m_stop, 1);
        m_thread.join();
        wl_event_source_remove(m_stopSource);
        wl_display_destroy_clients(m_display);
        wl_display_destroy(m_display);
        close(m_stop);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

private:
    /// What a client has asked for with one frame.
    struct Frame
    {
        Server& server;
        wl_resource* session;
        wl_resource* buffer = nullptr;
        std::vector<Area> damage = {};
        bool isCaptured = false;
    };

    static Server& Get(void* data) { return *static_cast<Server*>(data); }
    static Server& Get(wl_resource* resource) { return Get(wl_resource_get_user_data(resource)); }
    static Frame& GetFrame(wl_resource* resource) { return *static_cast<Frame*>(wl_resource_get_user_data(resource)); }
    static void Destroy(wl_client* /*client*/, wl_resource* resource) { wl_resource_destroy(resource); }

    static int OnStop(int /*descriptor*/, std::uint32_t /*mask*/, void* data)
    {
        wl_display_terminate(Get(data).m_display);
        return 0;
    }

    static void BindOutput(wl_client* client, void* data, std::uint32_t version, std::uint32_t id)
    {
        static const struct wl_output_interface s_requests = {.release = &Destroy};
        wl_resource* const output = wl_resource_create(client, &wl_output_interface, static_cast<int>(version), id);
        wl_resource_set_implementation(output, &s_requests, data, nullptr);
        const Server& server = Get(data);
        const auto [width, height] = server.GetScannedSize();
        wl_output_send_geometry(output, 0, 0, 0, 0, WL_OUTPUT_SUBPIXEL_UNKNOWN, "Maker", "Model",
                                static_cast<std::int32_t>(server.m_owner.m_options.transform));
        wl_output_send_mode(output, WL_OUTPUT_MODE_CURRENT, width, height, 60000);
        wl_output_send_scale(output, 1);
        wl_output_send_name(output, "TEST-1");
        wl_output_send_description(output, "A display of a test");
        wl_output_send_done(output);
    }

    static void BindSources(wl_client* client, void* data, std::uint32_t version, std::uint32_t id)
    {
        static const struct ext_output_image_capture_source_manager_v1_interface s_requests = {
            .create_source = &CreateSource, .destroy = &Destroy};
        wl_resource* const sources = wl_resource_create(client, &ext_output_image_capture_source_manager_v1_interface,
                                                        static_cast<int>(version), id);
        wl_resource_set_implementation(sources, &s_requests, data, nullptr);
    }

    static void CreateSource(wl_client* client, wl_resource* /*sources*/, std::uint32_t id, wl_resource* /*output*/)
    {
        static const struct ext_image_capture_source_v1_interface s_requests = {.destroy = &Destroy};
        wl_resource* const source = wl_resource_create(client, &ext_image_capture_source_v1_interface, 1, id);
        wl_resource_set_implementation(source, &s_requests, nullptr, nullptr);
    }

    static void BindManager(wl_client* client, void* data, std::uint32_t version, std::uint32_t id)
    {
        static const struct ext_image_copy_capture_manager_v1_interface s_requests = {
            .create_session = &CreateSession, .create_pointer_cursor_session = nullptr, .destroy = &Destroy};
        wl_resource* const manager =
            wl_resource_create(client, &ext_image_copy_capture_manager_v1_interface, static_cast<int>(version), id);
        wl_resource_set_implementation(manager, &s_requests, data, nullptr);
    }

    // The pointer isn't to be in the picture.
    static void CreateSession(wl_client* client, wl_resource* manager, std::uint32_t id, wl_resource* /*source*/,
                              std::uint32_t options)
    {
        static const struct ext_image_copy_capture_session_v1_interface s_requests = {.create_frame = &CreateFrame,
                                                                                      .destroy = &Destroy};
        Server& server = Get(manager);
        if (options != 0)
            wl_resource_post_error(manager, EXT_IMAGE_COPY_CAPTURE_MANAGER_V1_ERROR_INVALID_OPTION, "the pointer");
        wl_resource* const session = wl_resource_create(client, &ext_image_copy_capture_session_v1_interface, 1, id);
        wl_resource_set_implementation(session, &s_requests, &server, nullptr);
        if (server.m_owner.m_options.refusesSessions)
            ext_image_copy_capture_session_v1_send_stopped(session);
        else if (server.m_owner.m_options.answersSessions)
            server.SendConstraints(session);
    }

    static void CreateFrame(wl_client* client, wl_resource* session, std::uint32_t id)
    {
        static const struct ext_image_copy_capture_frame_v1_interface s_requests = {.destroy = &Destroy,
                                                                                    .attach_buffer = &AttachBuffer,
                                                                                    .damage_buffer = &DamageBuffer,
                                                                                    .capture = &CaptureFrame};
        Server& server = Get(session);
        if (server.m_hasFrame)
            wl_resource_post_error(session, EXT_IMAGE_COPY_CAPTURE_SESSION_V1_ERROR_DUPLICATE_FRAME, "two frames");
        server.m_hasFrame = true;
        wl_resource* const frame = wl_resource_create(client, &ext_image_copy_capture_frame_v1_interface, 1, id);
        wl_resource_set_implementation(frame, &s_requests, new Frame{server, session}, &ForgetFrame);
    }

    static void ForgetFrame(wl_resource* resource)
    {
        const std::unique_ptr<Frame> frame(&GetFrame(resource));
        frame->server.m_hasFrame = false;
    }

    static void AttachBuffer(wl_client* /*client*/, wl_resource* resource, wl_resource* buffer)
    {
        GetFrame(resource).buffer = buffer;
    }

    static void DamageBuffer(wl_client* /*client*/, wl_resource* resource, std::int32_t x, std::int32_t y,
                             std::int32_t width, std::int32_t height)
    {
        GetFrame(resource).damage.push_back({x, y, width, height});
    }

    static void CaptureFrame(wl_client* /*client*/, wl_resource* resource)
    {
        Frame& frame = GetFrame(resource);
        if (frame.buffer == nullptr)
            wl_resource_post_error(resource, EXT_IMAGE_COPY_CAPTURE_FRAME_V1_ERROR_NO_BUFFER, "no buffer");
        else if (std::exchange(frame.isCaptured, true))
            wl_resource_post_error(resource, EXT_IMAGE_COPY_CAPTURE_FRAME_V1_ERROR_ALREADY_CAPTURED, "twice");
        else
            frame.server.Answer(resource, frame);
    }

    /// As the display scans it.
    [[nodiscard]] Position GetScannedSize() const
    {
        const CaptureServerOptions& options = m_owner.m_options;
        const bool isTurned = (options.transform & 1) != 0;
        return isTurned ? Position{options.height, options.width} : Position{options.width, options.height};
    }

    [[nodiscard]] Position GetFrameSize() const
    {
        Position size = GetScannedSize();
        if (m_owner.m_options.frameWidth != 0)
            size.x = m_owner.m_options.frameWidth;
        return size;
    }

    [[nodiscard]] const std::vector<std::uint32_t>& GetFormats() const
    {
        const auto& kinds = m_owner.m_options.kinds;
        return kinds[std::min(m_kind, kinds.size() - 1)];
    }

    void SendConstraints(wl_resource* session) const
    {
        const Position size = GetFrameSize();
        ext_image_copy_capture_session_v1_send_buffer_size(session, static_cast<std::uint32_t>(size.x),
                                                           static_cast<std::uint32_t>(size.y));
        for (const std::uint32_t format : GetFormats())
            ext_image_copy_capture_session_v1_send_shm_format(session, format);
        ext_image_copy_capture_session_v1_send_done(session);
    }

    void Answer(wl_resource* resource, const Frame& frame)
    {
        const auto& answers = m_owner.m_options.answers;
        const FrameAnswer answer = answers[std::min(m_answers++, answers.size() - 1)];
        const auto fail = [resource](std::uint32_t reason)
        { ext_image_copy_capture_frame_v1_send_failed(resource, reason); };
        switch (answer)
        {
        case FrameAnswer::Ready:
            Copy(resource, frame);
            return;
        case FrameAnswer::Changed:
            ++m_kind;
            SendConstraints(frame.session);
            fail(EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_BUFFER_CONSTRAINTS);
            return;
        case FrameAnswer::Outdated:
            fail(EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_BUFFER_CONSTRAINTS);
            return;
        case FrameAnswer::Stopped:
            ext_image_copy_capture_session_v1_send_stopped(frame.session);
            fail(EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_STOPPED);
            return;
        case FrameAnswer::StoppedSession:
            ext_image_copy_capture_session_v1_send_stopped(frame.session);
            return;
        case FrameAnswer::Unknown:
            fail(EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_UNKNOWN);
            return;
        case FrameAnswer::None:
            return;
        }
    }

    void Copy(wl_resource* resource, const Frame& frame)
    {
        wl_shm_buffer* const buffer = wl_shm_buffer_get(frame.buffer);
        const Position size = GetFrameSize();
        const std::vector<std::uint32_t>& formats = GetFormats();
        const bool isOfKind = buffer != nullptr && wl_shm_buffer_get_width(buffer) == size.x &&
                              wl_shm_buffer_get_height(buffer) == size.y &&
                              std::count(formats.begin(), formats.end(), wl_shm_buffer_get_format(buffer)) != 0;
        if (!isOfKind)
        {
            ext_image_copy_capture_frame_v1_send_failed(
                resource, EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_BUFFER_CONSTRAINTS);
            return;
        }
        const std::uint32_t transform = m_owner.m_options.transform;
        wl_shm_buffer_begin_access(buffer);
        WritePixels({static_cast<unsigned char*>(wl_shm_buffer_get_data(buffer)), wl_shm_buffer_get_stride(buffer),
                     wl_shm_buffer_get_format(buffer)},
                    ApplyTransform(m_owner.MakePicture(++m_frames), transform), frame.damage);
        wl_shm_buffer_end_access(buffer);
        ext_image_copy_capture_frame_v1_send_transform(resource, transform);
        ext_image_copy_capture_frame_v1_send_damage(resource, 0, 0, size.x, size.y);
        ext_image_copy_capture_frame_v1_send_presentation_time(resource, 0, m_frames, 0);
        ext_image_copy_capture_frame_v1_send_ready(resource);
    }

    const CaptureServer& m_owner;
    wl_display* m_display;
    int m_stop;
    wl_event_source* m_stopSource = nullptr;
    std::size_t m_kind = 0;
    std::size_t m_answers = 0;
    unsigned m_frames = 0; ///< that have become ready
    bool m_hasFrame = false;
    std::thread m_thread;
};

CaptureServer::CaptureServer(const std::string& folder, const CaptureServerOptions& options)
    : m_options(options), m_socket(folder + "/capture"), m_server(std::make_unique<Server>(*this, m_socket))
{
}

CaptureServer::~CaptureServer() = default;

Picture CaptureServer::MakePicture(unsigned frame) const
{
    std::mt19937 generator(frame);
    Picture picture{m_options.width, m_options.height, {}};
    for (int count = 0; count < picture.width * picture.height; ++count)
        picture.pixels.push_back(static_cast<std::uint32_t>(generator()) | 0xFF000000U);
    return picture;
}

} // namespace Orvik::Tests
