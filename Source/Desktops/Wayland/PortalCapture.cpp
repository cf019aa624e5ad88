#include "Desktops/Wayland/PortalCapture.h"

#include "Core/System/Multimedia/Bitmap.h"
#include "Desktops/Wayland/BusDictionary.h"
#include "Desktops/Wayland/BusFunctions.h"
#include "Desktops/Wayland/DesktopPicture.h"
#include "Desktops/Wayland/FileUri.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <optional>
#include <string_view>
#include <system_error>

namespace Orvik::Desktops::Wayland
{
namespace
{

constexpr const char* s_service = "org.freedesktop.portal.Desktop";
constexpr const char* s_path = "/org/freedesktop/portal/desktop";
constexpr const char* s_interface = "org.freedesktop.portal.Screenshot";
constexpr const char* s_requestInterface = "org.freedesktop.portal.Request";
constexpr const char* s_token = "snipbench";

/// How long the portal gets to take the request: it may have to be started.
constexpr std::int64_t s_limit = 30'000'000'000;
constexpr std::int64_t s_noLimit = -1;

/// What a request came to.
struct Response
{
    std::uint32_t code = 0; ///< 0: done, 1: refused, 2: something else
    std::string uri;
};

std::string MakeRequestPath(const SessionBus& bus)
{
    std::string sender = bus.GetUniqueName();
    std::erase(sender, ':');
    std::replace(sender.begin(), sender.end(), '.', '_');
    return fmt::format("{}/request/{}/{}", s_path, sender, s_token);
}

/// One request to the portal, from the question to its answer.
class Request
{
public:
    explicit Request(SessionBus& bus) : m_bus(bus) {}

    /// Nothing if there was no answer; `answer` then says why.
    [[nodiscard]] std::optional<Response> Await(CaptureAnswer& answer);

private:
    /// Ahead of the request: its answer may come before the portal has said that it took it.
    void ListenAt(const std::string& path);
    void ListenForTheEndOfThePortal();
    [[nodiscard]] BusReply Send();
    void AwaitResponse(sd_bus_message* reply);
    /// Takes the question off the screen again.
    void Close();

    SessionBus& m_bus;
    std::string m_path;
    BusSubscription m_onResponse;
    BusSubscription m_onOwner;
    std::optional<Response> m_response;
    bool m_hasPortalEnded = false;
};

void Request::ListenAt(const std::string& path)
{
    m_path = path;
    m_onResponse = m_bus.Subscribe(path.c_str(), s_requestInterface, "Response",
                                   [this](sd_bus_message* message)
                                   {
                                       Response response;
                                       if (m_response || GetBusFunctions().read(message, "u", &response.code) <= 0)
                                           return;
                                       response.uri = BusDictionary(message).GetText("uri").value_or("");
                                       m_response = response;
                                   });
}

void Request::ListenForTheEndOfThePortal()
{
    m_onOwner = m_bus.Subscribe("/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged",
                                [this](sd_bus_message* message)
                                {
                                    const char* name = nullptr;
                                    const char* before = nullptr;
                                    const char* now = nullptr;
                                    if (GetBusFunctions().read(message, "sss", &name, &before, &now) > 0 &&
                                        std::string_view(name) == s_service && std::string_view(now).empty())
                                        m_hasPortalEnded = true;
                                });
}

BusReply Request::Send()
{
    const BusMessage call = m_bus.MakeCall(s_service, s_path, s_interface, "Screenshot");
    if (call == nullptr ||
        GetBusFunctions().append(call.get(), "sa{sv}", "", 2, "handle_token", "s", s_token, "interactive", "b", 0) < 0)
        return {};
    return m_bus.Call(call, s_limit);
}

void Request::Close()
{
    const BusMessage call = m_bus.MakeCall(s_service, m_path.c_str(), s_requestInterface, "Close");
    if (call == nullptr)
        return;
    GetBusFunctions().setAutoStart(call.get(), 0);
    GetBusFunctions().setExpectReply(call.get(), 0);
    m_bus.Send(call);
}

std::optional<Response> Request::Await(CaptureAnswer& answer)
{
    ListenAt(MakeRequestPath(m_bus));
    ListenForTheEndOfThePortal();
    const BusReply reply = Send();
    if (reply.message != nullptr)
        AwaitResponse(reply.message.get());
    if (m_response)
        return m_response;
    if (m_bus.IsInterrupted())
    {
        Close();
        answer = {CaptureOutcome::Failed, "the run was asked to end"};
    }
    else if (reply.message != nullptr)
        answer = {CaptureOutcome::Failed, "the desktop's portal has ended"};
    else if (reply.IsMissing())
        answer = {CaptureOutcome::NotOffered, "the desktop has no portal for screenshots (xdg-desktop-portal)"};
    else
        answer = {CaptureOutcome::Failed, "the desktop's portal takes no picture: " + reply.errorText};
    return std::nullopt;
}

void Request::AwaitResponse(sd_bus_message* reply)
{
    const char* path = nullptr;
    if (GetBusFunctions().read(reply, "o", &path) > 0 && path != m_path && !m_response)
        ListenAt(path); // portals before version 0.9 name it themselves
    (void)m_bus.WaitUntil([this] { return m_response || m_hasPortalEnded; }, s_noLimit);
}

/// Reads the portal's file and removes it.
CaptureAnswer TakeFile(const std::filesystem::path& file, const CapturedOutput& output, unsigned char* target)
{
    System::Multimedia::Bitmap picture;
    if (!picture.Load(file.string()))
        return {CaptureOutcome::Failed, "the portal's picture can't be read: " + file.string()};
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
    constexpr std::uint8_t bitsPerPixel = 32;
    const PixelRows rows = {picture.GetPixels(), picture.GetWidth(), picture.GetHeight(), picture.GetStride()};
    if (picture.GetBitsPerPixel() != bitsPerPixel || !CutOutput(rows, output, target))
        return {CaptureOutcome::Failed, "the portal's picture isn't of the whole desktop"};
    return {CaptureOutcome::Taken, {}};
}

} // namespace

bool PortalCapture::IsOffered()
{
    std::string ignored;
    const std::unique_ptr<SessionBus> bus = SessionBus::Open(m_interrupt, ignored);
    return bus != nullptr && bus->HasService(s_service);
}

CaptureAnswer PortalCapture::Capture(const CapturedOutput& output, unsigned char* target)
{
    CaptureAnswer answer;
    const std::unique_ptr<SessionBus> bus = SessionBus::Open(m_interrupt, answer.reason);
    if (bus == nullptr)
        return answer;
    const std::optional<Response> response = Request(*bus).Await(answer);
    if (!response)
        return answer;
    if (response->code != 0)
        return {
            CaptureOutcome::Failed,
            response->code == 1
                ? "the desktop's portal was not allowed to take a picture: allow it when the desktop asks, or, if "
                  "it doesn't any more, forget the answer with 'flatpak permission-remove screenshot screenshot'"
                : "the desktop's portal takes no picture. If it was not allowed to, forget the answer with 'flatpak "
                  "permission-remove screenshot screenshot'"};
    const std::optional<std::filesystem::path> file = FindFileOfUri(response->uri);
    if (!file)
        return {CaptureOutcome::Failed, "the desktop's portal names no file for its picture"};
    return TakeFile(*file, output, target);
}

} // namespace Orvik::Desktops::Wayland
