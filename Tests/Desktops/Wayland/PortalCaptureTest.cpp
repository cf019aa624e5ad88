#include "Desktops/Wayland/PortalCapture.h"
#include "Tests/Desktops/Wayland/FakeService.h"
#include "Tests/Support/Desktop/Picture.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

using Tests::FakeService;
using Tests::Picture;
using Clock = std::chrono::steady_clock;

constexpr const char* s_portalName = "org.freedesktop.portal.Desktop";
constexpr const char* s_portalPath = "/org/freedesktop/portal/desktop";
constexpr const char* s_request = "org.freedesktop.portal.Request";

/// Where the portal has to answer a request: it follows from the caller and its token.
std::string GetRequestPath(sd_bus_message* call)
{
    const char* parent = nullptr;
    const char* first = nullptr;
    const char* token = nullptr;
    const char* second = nullptr;
    int isInteractive = 1;
    if (sd_bus_message_read(call, "sa{sv}", &parent, 2, &first, "s", &token, &second, "b", &isInteractive) < 0 ||
        std::string(first) != "handle_token" || std::string(second) != "interactive" || isInteractive != 0)
        return {};
    std::string sender = sd_bus_message_get_sender(call) + 1;
    std::replace(sender.begin(), sender.end(), '.', '_');
    return std::string(s_portalPath) + "/request/" + sender + "/" + token;
}

void Respond(sd_bus* bus, const std::string& path, std::uint32_t code, const std::string& uri)
{
    sd_bus_emit_signal(bus, path.c_str(), s_request, "Response", "ua{sv}", code, 2, "other", "i", 7, "uri", "s",
                       uri.c_str());
}

class Portal : public testing::Test
{
protected:
    Portal() { Tests::SavePng(m_picture, m_file); }

    /// Handles requests from now on; what else is called counts as the request's end.
    void Serve(std::function<void(sd_bus* bus, sd_bus_message* call, const std::string& path)> handler)
    {
        m_service.emplace(m_bus.GetAddress(), s_portalName, s_portalPath,
                          [this, handler](sd_bus* bus, sd_bus_message* call)
                          {
                              if (sd_bus_message_is_method_call(call, s_request, "Close") != 0)
                                  m_isClosed = true;
                              else
                                  handler(bus, call, GetRequestPath(call));
                          });
    }

    void ServeResponse(std::uint32_t code, const std::string& uri)
    {
        Serve(
            [code, uri](sd_bus* bus, sd_bus_message* call, const std::string& path)
            {
                sd_bus_reply_method_return(call, "o", path.c_str());
                Respond(bus, path, code, uri);
            });
    }

    [[nodiscard]] CaptureAnswer Capture()
    {
        m_target.assign(4U * m_output.width * m_output.height, 0);
        return PortalCapture([this] { return m_isInterrupted.load(); }).Capture(m_output, m_target.data());
    }

    void ExpectTaken()
    {
        const CaptureAnswer answer = Capture();
        EXPECT_EQ(answer.outcome, CaptureOutcome::Taken) << answer.reason;
        Picture taken{static_cast<int>(m_output.width), static_cast<int>(m_output.height), {}};
        taken.pixels.resize(m_target.size() / 4);
        std::memcpy(taken.pixels.data(), m_target.data(), m_target.size());
        EXPECT_EQ(taken, m_picture.Crop({30, 0, 70, 50}));
        EXPECT_FALSE(std::filesystem::exists(m_file));
    }

    void ExpectFailure(const std::string& reason)
    {
        const CaptureAnswer answer = Capture();
        EXPECT_EQ(answer.outcome, CaptureOutcome::Failed);
        EXPECT_EQ(answer.reason, reason);
    }

    [[nodiscard]] std::string GetUri() const { return "file://" + m_file.string(); }

    Tests::SessionBusOfATest m_bus;
    const Picture m_picture = Tests::MakeTestPicture(100, 50); ///< of two outputs
    const std::filesystem::path m_file = m_bus.GetDirectory() / "Screenshot.png";
    CapturedOutput m_output = {"DP-2", {0, 0, 70, 50}, {-30, 0, 70, 50}, 70, 50};
    std::vector<unsigned char> m_target;
    std::atomic<bool> m_isInterrupted = false;
    std::atomic<bool> m_isClosed = false;
    std::optional<FakeService> m_service;
};

TEST_F(Portal, GivesAFileThatIsCutAndRemoved)
{
    ServeResponse(0, GetUri());
    ExpectTaken();
    EXPECT_FALSE(m_isClosed);
}

TEST_F(Portal, MayRespondAheadOfItsReply)
{
    Serve(
        [this](sd_bus* bus, sd_bus_message* call, const std::string& path)
        {
            Respond(bus, path, 0, GetUri());
            sd_bus_reply_method_return(call, "o", path.c_str());
        });
    ExpectTaken();
}

TEST_F(Portal, MayHaveAnotherPathForTheRequest)
{
    Serve(
        [this](sd_bus* bus, sd_bus_message* call, const std::string& /*path*/)
        {
            const std::string own = std::string(s_portalPath) + "/request/own";
            sd_bus_reply_method_return(call, "o", own.c_str());
            // As long as a person takes.
            sd_bus_flush(bus);
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            Respond(bus, own, 0, GetUri());
        });
    ExpectTaken();
}

TEST_F(Portal, SaysMoreThanWhatIsAwaited)
{
    Serve(
        [this](sd_bus* bus, sd_bus_message* call, const std::string& path)
        {
            sd_bus_reply_method_return(call, "o", path.c_str());
            // Of another request, without what belongs to it, and twice.
            Respond(bus, std::string(s_portalPath) + "/request/other", 1, "");
            sd_bus_emit_signal(bus, path.c_str(), s_request, "Response", "s", "");
            Respond(bus, path, 0, GetUri());
            Respond(bus, path, 1, "");
        });
    ExpectTaken();
}

TEST_F(Portal, ThatIsRefusedSaysWhatToAllow)
{
    ServeResponse(1, "");
    const CaptureAnswer answer = Capture();
    EXPECT_EQ(answer.outcome, CaptureOutcome::Failed);
    EXPECT_NE(answer.reason.find("was not allowed to take a picture: allow it"), std::string::npos) << answer.reason;
    EXPECT_TRUE(std::filesystem::exists(m_file));
}

TEST_F(Portal, ThatFailsTakesNoPicture)
{
    ServeResponse(2, GetUri());
    ExpectFailure("the desktop's portal takes no picture. If it was not allowed to, forget the answer with 'flatpak "
                  "permission-remove screenshot screenshot'");
    EXPECT_TRUE(std::filesystem::exists(m_file));
}

TEST_F(Portal, ThatNamesNoFileTakesNoPicture)
{
    for (const char* uri : {"", "https://example.org/a.png", "file:relative.png", "file:///a%zz"})
    {
        ServeResponse(0, uri);
        ExpectFailure("the desktop's portal names no file for its picture");
    }
    Serve(
        [](sd_bus* bus, sd_bus_message* call, const std::string& path)
        {
            sd_bus_reply_method_return(call, "o", path.c_str());
            sd_bus_emit_signal(bus, path.c_str(), s_request, "Response", "ua{sv}", 0, 1, "uri", "u", 7);
        });
    ExpectFailure("the desktop's portal names no file for its picture");
}

TEST_F(Portal, WithAFileThatIsNoPictureLeavesItWhereItIs)
{
    ServeResponse(0, "file:///no/such/file.png");
    ExpectFailure("the portal's picture can't be read: /no/such/file.png");
    std::ofstream(m_file, std::ios::trunc) << "mine";
    ServeResponse(0, GetUri());
    ExpectFailure("the portal's picture can't be read: " + m_file.string());
    EXPECT_TRUE(std::filesystem::exists(m_file));
    ServeResponse(0, "file://" + m_bus.GetDirectory().string());
    ExpectFailure("the portal's picture can't be read: " + m_bus.GetDirectory().string());
}

TEST_F(Portal, WithAPictureOfSomethingElseTakesNone)
{
    m_output.desktop = m_output.logical;
    ServeResponse(0, GetUri());
    ExpectFailure("the portal's picture isn't of the whole desktop");
    EXPECT_FALSE(std::filesystem::exists(m_file));
}

TEST_F(Portal, IsOfferedWhereThereIsOne)
{
    EXPECT_FALSE(PortalCapture(nullptr).IsOffered());
    ServeResponse(0, "");
    EXPECT_TRUE(PortalCapture(nullptr).IsOffered());
}

TEST_F(Portal, ThatIsNotThereIsNotOffered)
{
    const CaptureAnswer answer = Capture();
    EXPECT_EQ(answer.outcome, CaptureOutcome::NotOffered);
    EXPECT_EQ(answer.reason, "the desktop has no portal for screenshots (xdg-desktop-portal)");
}

TEST_F(Portal, WithoutScreenshotsIsNotOffered)
{
    Serve([](sd_bus* /*bus*/, sd_bus_message* call, const std::string& /*path*/)
          { sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_INTERFACE, "No such interface."); });
    EXPECT_EQ(Capture().outcome, CaptureOutcome::NotOffered);
    Serve([](sd_bus* /*bus*/, sd_bus_message* call, const std::string& /*path*/)
          { sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "Not for you."); });
    ExpectFailure("the desktop's portal takes no picture: Not for you");
}

TEST_F(Portal, ThatEndsIsWaitedForNoLonger)
{
    std::atomic<bool> isAsked = false;
    Serve(
        [&isAsked](sd_bus* /*bus*/, sd_bus_message* call, const std::string& path)
        {
            sd_bus_reply_method_return(call, "o", path.c_str());
            isAsked = true;
        });
    std::thread end(
        [this, &isAsked]
        {
            while (!isAsked)
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            m_service.reset();
        });
    ExpectFailure("the desktop's portal has ended");
    end.join();
}

TEST_F(Portal, WithABusThatEndsIsWaitedForNoLonger)
{
    std::atomic<bool> isAsked = false;
    Serve(
        [&isAsked](sd_bus* bus, sd_bus_message* call, const std::string& path)
        {
            sd_bus_reply_method_return(call, "o", path.c_str());
            sd_bus_flush(bus);
            isAsked = true;
        });
    std::thread end(
        [this, &isAsked]
        {
            while (!isAsked)
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            m_bus.End();
        });
    EXPECT_EQ(Capture().outcome, CaptureOutcome::Failed);
    end.join();
}

TEST_F(Portal, DoesNotKeepARunThatIsAskedToEndAndTakesItsQuestionBack)
{
    Serve(
        [this](sd_bus* /*bus*/, sd_bus_message* call, const std::string& path)
        {
            sd_bus_reply_method_return(call, "o", path.c_str());
            m_isInterrupted = true;
        });
    const auto start = Clock::now();
    ExpectFailure("the run was asked to end");
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(2));
    for (int attempt = 0; attempt < 1000 && !m_isClosed; ++attempt)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(m_isClosed);
}

} // namespace
} // namespace Orvik::Desktops::Wayland
