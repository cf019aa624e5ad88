#include "Desktops/Wayland/KWinCapture.h"
#include "Tests/Desktops/Wayland/FakeService.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <mutex>
#include <unistd.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

using Tests::FakeService;
using Clock = std::chrono::steady_clock;

constexpr const char* s_name = "org.kde.KWin";
constexpr const char* s_path = "/org/kde/KWin/ScreenShot2";
constexpr std::int64_t s_shortPatience = 200'000'000;

/// What the fake says of its picture, and what it writes.
struct Offer
{
    const char* type = "raw";
    std::uint32_t width = 2;
    std::uint32_t height = 2;
    std::uint32_t stride = 8;
    std::uint32_t format = 6;
    std::string bytes = "abcdefghijklmnop";
    bool keepsPipe = false; ///< open and silent after the bytes
};

class KWinPicture : public testing::Test
{
protected:
    /// Serves that offer from now on.
    void Serve(const Offer& offer)
    {
        m_service.emplace(m_bus.GetAddress(), s_name, s_path,
                          [this, offer](sd_bus* /*bus*/, sd_bus_message* call) { Answer(call, offer); });
    }

    void ServeError(const char* name, const char* text)
    {
        m_service.emplace(m_bus.GetAddress(), s_name, s_path,
                          [name, text](sd_bus* /*bus*/, sd_bus_message* call)
                          { sd_bus_reply_method_errorf(call, name, "%s", text); });
    }

    [[nodiscard]] CaptureAnswer Capture(std::int64_t patience = KWinCapture::Patience)
    {
        m_target.assign(4U * m_output.width * m_output.height, 0);
        return KWinCapture([this] { return m_isInterrupted.load(); }, patience).Capture(m_output, m_target.data());
    }

    [[nodiscard]] std::string GetPixels() const { return {m_target.begin(), m_target.end()}; }

    Tests::SessionBusOfATest m_bus;
    CapturedOutput m_output = {"DP-1", {0, 0, 2, 2}, {0, 0, 4, 2}, 2, 2};
    std::vector<unsigned char> m_target;
    std::atomic<bool> m_isInterrupted = false;
    std::mutex m_mutex;
    std::string m_asked; ///< for which output, and with which options
    std::optional<FakeService> m_service;

private:
    void Answer(sd_bus_message* call, const Offer& offer)
    {
        const char* output = nullptr;
        const char* first = nullptr;
        const char* second = nullptr;
        int hasCursor = 0;
        int isNative = 0;
        int pipe = -1;
        if (sd_bus_message_read(call, "sa{sv}h", &output, 2, &first, "b", &hasCursor, &second, "b", &isNative, &pipe) <
            0)
            return;
        {
            const std::lock_guard lock(m_mutex);
            m_asked = std::string(sd_bus_message_get_member(call)) + " " + output + " " + first + " " +
                      std::to_string(hasCursor) + " " + second + " " + std::to_string(isNative);
        }
        const int writer = dup(pipe);
        sd_bus_reply_method_return(call, "a{sv}", 5, "type", "s", offer.type, "width", "u", offer.width, "height", "u",
                                   offer.height, "stride", "u", offer.stride, "format", "u", offer.format);
        (void)!write(writer, offer.bytes.data(), offer.bytes.size());
        if (offer.keepsPipe)
            m_kept = writer;
        else
            close(writer);
    }

    int m_kept = -1; ///< goes with the process
};

TEST_F(KWinPicture, GivesItsPixels)
{
    Serve({});
    const CaptureAnswer answer = Capture();
    EXPECT_EQ(answer.outcome, CaptureOutcome::Taken) << answer.reason;
    EXPECT_EQ(GetPixels(), "abcdefghijklmnop");
    const std::lock_guard lock(m_mutex);
    EXPECT_EQ(m_asked, "CaptureScreen DP-1 include-cursor 0 native-resolution 1");
}

TEST_F(KWinPicture, MayHaveRoomBetweenItsRows)
{
    Serve({.stride = 12, .bytes = "abcdefgh....ijklmnop...."});
    EXPECT_EQ(Capture().outcome, CaptureOutcome::Taken);
    EXPECT_EQ(GetPixels(), "abcdefghijklmnop");
}

TEST_F(KWinPicture, MayHaveRedFirst)
{
    for (const std::uint32_t format : {16U, 17U, 18U})
    {
        Serve({.format = format});
        EXPECT_EQ(Capture().outcome, CaptureOutcome::Taken);
        EXPECT_EQ(GetPixels(), "cbadgfehkjilonmp") << format;
    }
    for (const std::uint32_t format : {4U, 5U, 6U})
    {
        Serve({.format = format});
        EXPECT_EQ(Capture().outcome, CaptureOutcome::Taken);
        EXPECT_EQ(GetPixels(), "abcdefghijklmnop") << format;
    }
}

TEST_F(KWinPicture, MayWriteMoreThanAPipeHolds)
{
    m_output = {"DP-1", {0, 0, 500, 400}, {0, 0, 500, 400}, 500, 400};
    const std::string bytes(4UL * 500 * 400, 'x');
    Serve({.width = 500, .height = 400, .stride = 2000, .bytes = bytes});
    EXPECT_EQ(Capture().outcome, CaptureOutcome::Taken);
    EXPECT_EQ(GetPixels(), bytes);
}

TEST_F(KWinPicture, IsOfferedWhereItHasTheInterface)
{
    EXPECT_FALSE(KWinCapture(nullptr).IsOffered());
    ServeError(SD_BUS_ERROR_UNKNOWN_OBJECT, "No such object path");
    EXPECT_FALSE(KWinCapture(nullptr).IsOffered());
    m_service.emplace(m_bus.GetAddress(), s_name, s_path,
                      [](sd_bus* /*bus*/, sd_bus_message* call) { sd_bus_reply_method_return(call, "v", "u", 4U); });
    EXPECT_TRUE(KWinCapture(nullptr).IsOffered());
    m_service.emplace(m_bus.GetAddress(), s_name, s_path, [](sd_bus* /*bus*/, sd_bus_message* /*call*/) {});
    EXPECT_FALSE(KWinCapture(nullptr).IsOffered()) << "it says nothing";
}

TEST_F(KWinPicture, ThatIsNotThereIsNotOffered)
{
    const CaptureAnswer answer = Capture();
    EXPECT_EQ(answer.outcome, CaptureOutcome::NotOffered);
    EXPECT_EQ(answer.reason, "KWin's ScreenShot2 isn't there");
}

TEST_F(KWinPicture, ThatDoesNotKnowThisProgramLeavesItToOthersAndSaysWhatToDo)
{
    ServeError("org.kde.KWin.ScreenShot2.Error.NoAuthorized", "The process is not authorized to take a screenshot");
    const CaptureAnswer answer = Capture();
    EXPECT_EQ(answer.outcome, CaptureOutcome::NotOffered);
    EXPECT_NE(answer.reason.find("X-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2"), std::string::npos);
    EXPECT_NE(answer.reason.find("share/applications"), std::string::npos);
}

TEST_F(KWinPicture, ThatFailsSaysWhy)
{
    ServeError("org.kde.KWin.ScreenShot2.Error.InvalidScreen", "Invalid screen requested.");
    const CaptureAnswer answer = Capture();
    EXPECT_EQ(answer.outcome, CaptureOutcome::Failed);
    EXPECT_EQ(answer.reason, "KWin takes no picture: Invalid screen requested");
}

TEST_F(KWinPicture, WithAPictureThatCanNotBeIsNotBelieved)
{
    for (const Offer& offer :
         {Offer{.type = "png"}, Offer{.width = 0}, Offer{.height = 0}, Offer{.width = 65536, .stride = 262144},
          Offer{.height = 65536}, Offer{.width = 4294967295U}, Offer{.stride = 7}, Offer{.stride = 0},
          Offer{.stride = 4294967295U}, Offer{.width = 65535, .height = 65535, .stride = 262140}, Offer{.format = 22},
          Offer{.format = 0}})
    {
        Serve(offer);
        const CaptureAnswer answer = Capture();
        EXPECT_EQ(answer.outcome, CaptureOutcome::Failed);
        EXPECT_EQ(answer.reason, "KWin's picture has an unknown form")
            << offer.width << "x" << offer.height << " " << offer.stride << " " << offer.format;
    }
}

TEST_F(KWinPicture, OfAnotherDisplayIsNotTaken)
{
    m_output.width = 20;
    m_output.height = 20;
    Serve({.width = 40, .height = 20, .stride = 160, .bytes = std::string(3200, 'x')});
    const CaptureAnswer answer = Capture();
    EXPECT_EQ(answer.outcome, CaptureOutcome::Failed);
    EXPECT_EQ(answer.reason, "KWin's picture isn't of the display's size");
}

TEST_F(KWinPicture, ThatClosesThePipeTooEarlyGivesNoPicture)
{
    for (const char* bytes : {"", "abcdefghijklmno"})
    {
        Serve({.bytes = bytes});
        const CaptureAnswer answer = Capture();
        EXPECT_EQ(answer.outcome, CaptureOutcome::Failed);
        EXPECT_EQ(answer.reason, "KWin takes no picture: the picture is too short") << bytes;
    }
}

TEST_F(KWinPicture, ThatStopsWritingIsNotWaitedForWithoutEnd)
{
    Serve({.bytes = "abcdefghijklmno", .keepsPipe = true});
    const CaptureAnswer answer = Capture(s_shortPatience);
    EXPECT_EQ(answer.outcome, CaptureOutcome::Failed);
    EXPECT_EQ(answer.reason, "KWin takes no picture: the picture doesn't come");
}

TEST_F(KWinPicture, ThatDoesNotAnswerIsNotWaitedForWithoutEnd)
{
    const FakeService service(m_bus.GetAddress(), s_name, s_path, [](sd_bus* /*bus*/, sd_bus_message* /*call*/) {});
    const CaptureAnswer answer = Capture(s_shortPatience);
    EXPECT_EQ(answer.outcome, CaptureOutcome::Failed);
    EXPECT_EQ(answer.reason, "KWin takes no picture: there is no answer");
}

TEST_F(KWinPicture, ThatAnswersSomethingElseIsNotBelieved)
{
    const FakeService service(m_bus.GetAddress(), s_name, s_path,
                              [](sd_bus* /*bus*/, sd_bus_message* call)
                              { sd_bus_reply_method_return(call, "s", "width"); });
    const CaptureAnswer answer = Capture();
    EXPECT_EQ(answer.outcome, CaptureOutcome::Failed);
    EXPECT_EQ(answer.reason, "KWin's picture has an unknown form");
}

TEST_F(KWinPicture, DoesNotKeepARunThatIsAskedToEnd)
{
    const FakeService service(m_bus.GetAddress(), s_name, s_path, [](sd_bus* /*bus*/, sd_bus_message* /*call*/) {});
    std::thread user(
        [this]
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            m_isInterrupted = true;
        });
    const auto start = Clock::now();
    const CaptureAnswer answer = Capture();
    user.join();
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(2));
    EXPECT_EQ(answer.outcome, CaptureOutcome::Failed);
    EXPECT_EQ(answer.reason, "KWin takes no picture: the run was asked to end");
}

} // namespace
} // namespace Orvik::Desktops::Wayland
