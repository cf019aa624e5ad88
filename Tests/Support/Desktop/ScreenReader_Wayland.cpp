#include "Tests/Support/Desktop/ScreenReader.h"

#include "Tests/Support/Desktop/CompositorClient.h"

#include <cstring>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>
#include <wlr-screencopy-unstable-v1-client-protocol.h>

namespace Orvik::Tests
{
namespace
{

/// Memory that the compositor writes pixels into, four bytes each.
class SharedPixels
{
public:
    SharedPixels(wl_shm* shm, std::uint32_t format, int width, int height)
        : m_bytes(std::size_t{4} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
    {
        const int file = memfd_create("screen", MFD_CLOEXEC);
        void* const memory = ftruncate(file, static_cast<off_t>(m_bytes)) == 0
                                 ? mmap(nullptr, m_bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0)
                                 : MAP_FAILED;
        if (memory == MAP_FAILED)
        {
            close(file);
            throw std::runtime_error("There is no memory for a picture of the screen.");
        }
        m_memory = memory;
        wl_shm_pool* const pool = wl_shm_create_pool(shm, file, static_cast<std::int32_t>(m_bytes));
        m_buffer = wl_shm_pool_create_buffer(pool, 0, width, height, 4 * width, format);
        wl_shm_pool_destroy(pool);
        close(file);
    }
    ~SharedPixels()
    {
        wl_buffer_destroy(m_buffer);
        munmap(m_memory, m_bytes);
    }
    SharedPixels(const SharedPixels&) = delete;
    SharedPixels& operator=(const SharedPixels&) = delete;

    [[nodiscard]] wl_buffer* GetBuffer() const { return m_buffer; }
    [[nodiscard]] const unsigned char* GetBytes() const { return static_cast<const unsigned char*>(m_memory); }

private:
    std::size_t m_bytes;
    void* m_memory = nullptr;
    wl_buffer* m_buffer = nullptr;
};

/// How far a copy of the screen has come.
struct Copy
{
    std::uint32_t format = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool isOffered = false;
    bool isUpsideDown = false;
    bool isReady = false;
    bool isFailed = false;
};

Copy& Get(void* data)
{
    return *static_cast<Copy*>(data);
}

void OnBuffer(void* data, zwlr_screencopy_frame_v1* /*frame*/, std::uint32_t format, std::uint32_t width,
              std::uint32_t height, std::uint32_t /*stride*/)
{
    Copy& copy = Get(data);
    copy.format = format;
    copy.width = width;
    copy.height = height;
    copy.isOffered = true;
}

// A frame of the first version has no more.
zwlr_screencopy_frame_v1_listener MakeListener()
{
    zwlr_screencopy_frame_v1_listener listener = {};
    listener.buffer = &OnBuffer;
    listener.flags = [](void* data, zwlr_screencopy_frame_v1*, std::uint32_t flags)
    { Get(data).isUpsideDown = (flags & ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT) != 0; };
    listener.ready = [](void* data, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t, std::uint32_t)
    { Get(data).isReady = true; };
    listener.failed = [](void* data, zwlr_screencopy_frame_v1*) { Get(data).isFailed = true; };
    return listener;
}

class CompositorReader final : public ScreenReader
{
public:
    explicit CompositorReader(const std::string& socket) : m_client(socket)
    {
        if (m_client.GetScreencopy() == nullptr || m_client.GetShm() == nullptr || m_client.GetOutput() == nullptr)
            throw std::runtime_error("The compositor doesn't let its screen be copied.");
    }

    [[nodiscard]] int GetWidth() const override { return m_client.GetWidth(); }
    [[nodiscard]] int GetHeight() const override { return m_client.GetHeight(); }

    [[nodiscard]] Picture Capture(const Area& area) override
    {
        static const zwlr_screencopy_frame_v1_listener s_listener = MakeListener();
        Copy copy;
        zwlr_screencopy_frame_v1* const frame =
            zwlr_screencopy_manager_v1_capture_output(m_client.GetScreencopy(), 0, m_client.GetOutput());
        zwlr_screencopy_frame_v1_add_listener(frame, &s_listener, &copy);
        m_client.WaitUntil([&copy] { return copy.isOffered || copy.isFailed; });
        Picture picture;
        if (!copy.isFailed)
            picture = Read(frame, copy, area);
        zwlr_screencopy_frame_v1_destroy(frame);
        if (copy.isFailed)
            throw std::runtime_error("The compositor makes no picture of its screen.");
        return picture;
    }

private:
    [[nodiscard]] Picture Read(zwlr_screencopy_frame_v1* frame, const Copy& copy, const Area& area)
    {
        const bool isKnown = copy.format == WL_SHM_FORMAT_XRGB8888 || copy.format == WL_SHM_FORMAT_ARGB8888;
        if (!isKnown || static_cast<int>(copy.width) != GetWidth() || static_cast<int>(copy.height) != GetHeight())
            throw std::runtime_error("The compositor's pictures of its screen aren't of a known kind.");
        const SharedPixels pixels(m_client.GetShm(), copy.format, GetWidth(), GetHeight());
        zwlr_screencopy_frame_v1_copy(frame, pixels.GetBuffer());
        m_client.WaitUntil([&copy] { return copy.isReady || copy.isFailed; });
        Picture picture{area.width, area.height, {}};
        for (int y = area.y; y < area.y + area.height; ++y)
        {
            const int row = copy.isUpsideDown ? GetHeight() - 1 - y : y;
            const auto first = 4 * (static_cast<std::size_t>(row) * copy.width + static_cast<std::size_t>(area.x));
            for (int x = 0; x < area.width; ++x)
            {
                std::uint32_t pixel = 0;
                std::memcpy(&pixel, pixels.GetBytes() + first + 4 * static_cast<std::size_t>(x), sizeof(pixel));
                picture.pixels.push_back(pixel | 0xFF000000U);
            }
        }
        return picture;
    }

    CompositorClient m_client;
};

} // namespace

std::unique_ptr<ScreenReader> MakeCompositorReader(const std::string& socket)
{
    return std::make_unique<CompositorReader>(socket);
}

} // namespace Orvik::Tests
