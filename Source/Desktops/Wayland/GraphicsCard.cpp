#include "Desktops/Wayland/GraphicsCard.h"

#include "Desktops/Wayland/Session.h"
#include "Systems/Linux/FileDescriptor.h"

#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <linux-dmabuf-unstable-v1-client-protocol.h>
#include <optional>
#include <string>
#include <sys/sysmacros.h>
#include <sys/types.h>
#include <system_error>
#include <unistd.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// What the compositor says of its buffers, as far as it is of interest.
struct Feedback
{
    std::optional<dev_t> device;
    bool isDone = false;
};

Feedback& Get(void* data)
{
    return *static_cast<Feedback*>(data);
}

constexpr zwp_linux_dmabuf_feedback_v1_listener s_listener = {
    .done = [](void* data, zwp_linux_dmabuf_feedback_v1*) { Get(data).isDone = true; },
    .format_table = [](void*, zwp_linux_dmabuf_feedback_v1*, std::int32_t descriptor, std::uint32_t)
    { const Systems::FileDescriptor unneeded(descriptor); },
    .main_device =
        [](void* data, zwp_linux_dmabuf_feedback_v1*, wl_array* number)
    {
        dev_t device = 0;
        if (number->size != sizeof(device))
            return;
        std::memcpy(&device, number->data, sizeof(device));
        Get(data).device = device;
    },
    .tranche_done = [](void*, zwp_linux_dmabuf_feedback_v1*) {},
    .tranche_target_device = [](void*, zwp_linux_dmabuf_feedback_v1*, wl_array*) {},
    .tranche_formats = [](void*, zwp_linux_dmabuf_feedback_v1*, wl_array*) {},
    .tranche_flags = [](void*, zwp_linux_dmabuf_feedback_v1*, std::uint32_t) {},
};

std::optional<dev_t> FindMainDevice(Session& session)
{
    zwp_linux_dmabuf_v1* const dmabuf = session.globals.dmabuf;
    if (dmabuf == nullptr ||
        zwp_linux_dmabuf_v1_get_version(dmabuf) < ZWP_LINUX_DMABUF_V1_GET_DEFAULT_FEEDBACK_SINCE_VERSION)
        return std::nullopt;
    Feedback feedback;
    zwp_linux_dmabuf_feedback_v1* const proxy = zwp_linux_dmabuf_v1_get_default_feedback(dmabuf);
    zwp_linux_dmabuf_feedback_v1_add_listener(proxy, &s_listener, &feedback);
    const bool isReported = session.connection->WaitUntil([&feedback] { return feedback.isDone; });
    zwp_linux_dmabuf_feedback_v1_destroy(proxy);
    return isReported ? feedback.device : std::nullopt;
}

/// A card that programs may draw with has a node of its own for it, beside the one that the compositor may name.
bool HasRenderNode(dev_t device)
{
    const std::string folder = fmt::format("/sys/dev/char/{}:{}/device/drm", major(device), minor(device));
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
    {
        const std::string name = entry.path().filename().string();
        if (name.starts_with("renderD") && access(("/dev/dri/" + name).c_str(), R_OK | W_OK) == 0)
            return true;
    }
    return false;
}

} // namespace

GraphicsCard FindGraphicsCard(Session* session)
{
    if (session == nullptr || !session->connection->IsUsable())
        return {false, "there is no compositor"};
    const std::optional<dev_t> device = FindMainDevice(*session);
    if (!device)
        return {false, "the compositor offers no graphics card"};
    if (!HasRenderNode(*device))
        return {false, "the compositor's graphics card can't be opened"};
    return {true, "the compositor offers a graphics card"};
}

} // namespace Orvik::Desktops::Wayland
