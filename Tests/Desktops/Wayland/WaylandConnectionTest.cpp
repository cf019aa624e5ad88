#include "Desktops/Wayland/WaylandConnection.h"

#include "Core/System/Time/MonotonicClock.h"
#include "Tests/Desktops/Wayland/CompositorFixture.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <csignal>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Tests::CompositorKind;
using Tests::EnvironmentVariable;

int s_losses = 0;

/// A socket that takes clients and never says a word.
class SilentCompositor
{
public:
    explicit SilentCompositor(const std::string& path) : m_socket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        EXPECT_EQ(bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        EXPECT_EQ(listen(m_socket, 1), 0);
    }
    ~SilentCompositor() { close(m_socket); }
    SilentCompositor(const SilentCompositor&) = delete;
    SilentCompositor& operator=(const SilentCompositor&) = delete;

private:
    int m_socket;
};

TEST(WaylandConnectionFailures, WithoutACompositorItSaysWhy)
{
    const EnvironmentVariable display("WAYLAND_DISPLAY", "/nowhere/wayland-7");
    std::string failure;
    EXPECT_EQ(WaylandConnection::Open(failure), nullptr);
    EXPECT_THAT(failure, StartsWith("no compositor answers: "));
}

TEST(WaylandConnectionFailures, ACompositorThatSaysNothingIsGivenUpWithinTwoSeconds)
{
    const Tests::TemporaryDirectory directory;
    const std::string path = (directory.GetPath() / "silent").string();
    const SilentCompositor compositor(path);
    const EnvironmentVariable display("WAYLAND_DISPLAY", path.c_str());
    const std::int64_t begin = System::Time::GetMonotonicNanoseconds();
    std::string failure;
    EXPECT_EQ(WaylandConnection::Open(failure), nullptr);
    EXPECT_EQ(failure, "the compositor doesn't answer");
    EXPECT_LT(System::Time::GetMonotonicNanoseconds() - begin, 2'000'000'000);
}

class WaylandConnectionTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const auto reason = Tests::FindReasonToSkip(CompositorKind::HeadlessSway))
            GTEST_SKIP() << *reason;
        s_losses = 0;
        m_desktop.emplace(Tests::CompositorOptions{.kind = CompositorKind::HeadlessSway, .configuration = {}});
        std::string failure;
        m_connection = WaylandConnection::Open(failure);
        ASSERT_NE(m_connection, nullptr) << failure;
        m_connection->SetLossHandler([] { ++s_losses; });
    }

    Tests::LogRecorder m_log;
    std::optional<Tests::CompositorDesktop> m_desktop;
    std::shared_ptr<WaylandConnection> m_connection;
};

TEST_F(WaylandConnectionTest, GoesRoundAsOftenAsIsAsked)
{
    for (int round = 0; round < 100; ++round)
        ASSERT_TRUE(m_connection->Roundtrip());
    EXPECT_TRUE(m_connection->IsUsable());
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WaylandConnectionTest, AWaitEndsWithItsTime)
{
    const std::int64_t begin = System::Time::GetMonotonicNanoseconds();
    EXPECT_FALSE(m_connection->WaitUntil([] { return false; }, 50'000'000));
    const std::int64_t time = System::Time::GetMonotonicNanoseconds() - begin;
    EXPECT_GE(time, 50'000'000);
    EXPECT_TRUE(m_connection->IsUsable());
    EXPECT_TRUE(m_connection->Dispatch(0));
}

TEST_F(WaylandConnectionTest, ALostCompositorIsReportedOnce)
{
    m_desktop.reset();
    EXPECT_FALSE(m_connection->WaitUntil([] { return false; }, 10'000'000'000));
    EXPECT_FALSE(m_connection->IsUsable());
    EXPECT_EQ(s_losses, 1);
    EXPECT_FALSE(m_connection->Roundtrip());
    EXPECT_FALSE(m_connection->Dispatch(0));
    EXPECT_FALSE(m_connection->Flush());
    EXPECT_EQ(s_losses, 1);
    EXPECT_THAT(m_log.GetLines(), ElementsAre(HasSubstr("Error: The connection to the compositor is lost: ")));
}

TEST_F(WaylandConnectionTest, ARefusedRequestSaysWhatItWas)
{
    // An object that was never made.
    wl_registry* const registry = wl_display_get_registry(m_connection->GetDisplay());
    auto* const refused = static_cast<wl_proxy*>(wl_registry_bind(registry, 0xFFFFFF, &wl_shm_interface, 1));
    EXPECT_FALSE(m_connection->Roundtrip());
    EXPECT_EQ(s_losses, 1);
    EXPECT_THAT(m_log.GetLines(), ElementsAre(HasSubstr("The compositor refuses a request: wl_registry, error 0.")));
    wl_proxy_destroy(refused);
    wl_registry_destroy(registry);
}

} // namespace
} // namespace Orvik::Desktops::Wayland
