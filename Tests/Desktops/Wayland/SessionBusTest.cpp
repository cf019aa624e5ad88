#include "Desktops/Wayland/SessionBus.h"
#include "Desktops/Wayland/BusCapture.h"
#include "Desktops/Wayland/BusDictionary.h"
#include "Tests/Desktops/Wayland/FakeService.h"

#include <chrono>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

using Tests::EnvironmentVariable;
using Tests::FakeService;
using Clock = std::chrono::steady_clock;

constexpr std::int64_t s_second = 1'000'000'000;

TEST(BusOfNoSession, IsNone)
{
    const EnvironmentVariable address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus");
    std::string failure;
    EXPECT_EQ(SessionBus::Open(nullptr, failure), nullptr);
    EXPECT_EQ(failure, "there is no session bus: No such file or directory (2)");
}

TEST(BusOfNoSession, ThatTakesConnectionsAndSaysNothingIsNone)
{
    const Tests::TemporaryDirectory directory;
    const std::string path = (directory.GetPath() / "bus").string();
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    ASSERT_EQ(listen(listener, 4), 0);

    const EnvironmentVariable variable("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + path).c_str());
    const auto start = Clock::now();
    std::string failure;
    EXPECT_EQ(SessionBus::Open(nullptr, failure), nullptr);
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(10));
    EXPECT_EQ(failure, "the session bus doesn't answer");
    close(listener);
}

class Bus : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string failure;
        m_bus = SessionBus::Open(nullptr, failure);
        ASSERT_NE(m_bus, nullptr) << failure;
    }

    [[nodiscard]] BusReply Call(const char* service)
    {
        return m_bus->Call(m_bus->MakeCall(service, "/there", "org.example.Interface", "Do"), 10 * s_second);
    }

    Tests::SessionBusOfATest m_session;
    std::unique_ptr<SessionBus> m_bus;
};

TEST_F(Bus, GivesANameOfItsOwn)
{
    EXPECT_EQ(m_bus->GetUniqueName().substr(0, 1), ":");
}

TEST_F(Bus, SaysWhatIsNotThere)
{
    const BusReply reply = Call("org.example.Nothing");
    EXPECT_EQ(reply.message, nullptr);
    EXPECT_TRUE(reply.IsMissing());
    EXPECT_FALSE(reply.errorText.empty());
}

TEST_F(Bus, BringsAnAnswer)
{
    const FakeService service(m_session.GetAddress(), "org.example.Service", "/there",
                              [](sd_bus* /*bus*/, sd_bus_message* call) { sd_bus_reply_method_return(call, "u", 42); });
    const BusReply reply = Call("org.example.Service");
    ASSERT_NE(reply.message, nullptr);
    std::uint32_t number = 0;
    EXPECT_GT(sd_bus_message_read(reply.message.get(), "u", &number), 0);
    EXPECT_EQ(number, 42U);
    EXPECT_FALSE(reply.IsMissing());
}

TEST_F(Bus, KnowsItsServices)
{
    EXPECT_FALSE(m_bus->HasService("org.example.Service"));
    const FakeService service(m_session.GetAddress(), "org.example.Service", "/there", nullptr);
    EXPECT_TRUE(m_bus->HasService("org.example.Service"));
    EXPECT_FALSE(m_bus->HasService("org.example"));
}

TEST_F(Bus, ThatEndsIsLost)
{
    m_session.End();
    const auto start = Clock::now();
    EXPECT_EQ(Call("org.example.Service").message, nullptr);
    EXPECT_FALSE(m_bus->WaitUntil([] { return false; }, -1));
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(m_bus->MakeCall("org.example.Service", "/there", "org.example.Interface", "Do"), nullptr);
    EXPECT_EQ(m_bus->GetUniqueName(), "");
}

TEST_F(Bus, WaitsAsLongAsItIsAsked)
{
    const auto start = Clock::now();
    EXPECT_FALSE(m_bus->WaitUntil([] { return false; }, s_second / 5));
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(200));
    EXPECT_NE(m_bus->GetUniqueName(), "") << "the bus is still there";
    EXPECT_FALSE(m_bus->IsInterrupted());
    int count = 0;
    EXPECT_TRUE(m_bus->WaitUntil([&count] { return ++count == 3; }, -1));
}

TEST_F(Bus, OverwhelmsNoDictionary)
{
    const FakeService service(m_session.GetAddress(), "org.example.Service", "/there",
                              [](sd_bus* /*bus*/, sd_bus_message* call)
                              {
                                  sd_bus_reply_method_return(call, "a{sv}", 5, "text", "s", "words", "number", "u", 7U,
                                                             "list", "as", 2, "one", "two", "signed", "i", -1, "last",
                                                             "u", 8U);
                              });
    const BusReply reply = Call("org.example.Service");
    ASSERT_NE(reply.message, nullptr);
    const BusDictionary values(reply.message.get());
    EXPECT_EQ(values.GetText("text"), "words");
    EXPECT_EQ(values.GetNumber("number"), 7U);
    EXPECT_EQ(values.GetNumber("last"), 8U);
    for (const char* name : {"text", "list", "signed", "nothing"})
        EXPECT_EQ(values.GetNumber(name), std::nullopt) << name;
    for (const char* name : {"number", "list", "signed", "nothing"})
        EXPECT_EQ(values.GetText(name), std::nullopt) << name;
}

/// A way that answers what it was given.
class FakeWay final : public OutputCapture
{
public:
    FakeWay(CaptureAnswer answer, int& count) : m_answer(std::move(answer)), m_count(count) {}

    [[nodiscard]] bool IsOffered() override { return true; }
    [[nodiscard]] CaptureAnswer Capture(const CapturedOutput& /*output*/, unsigned char* /*target*/) override
    {
        ++m_count;
        return m_answer;
    }

private:
    CaptureAnswer m_answer;
    int& m_count;
};

class Ways : public testing::Test
{
protected:
    void Add(CaptureOutcome outcome, const char* reason)
    {
        m_ways.push_back(std::make_unique<FakeWay>(CaptureAnswer{outcome, reason}, m_count));
    }

    std::vector<std::unique_ptr<OutputCapture>> m_ways;
    int m_count = 0;
};

TEST_F(Ways, AreTriedUntilOneTakesThePicture)
{
    Add(CaptureOutcome::NotOffered, "the first isn't there");
    Add(CaptureOutcome::Taken, "");
    Add(CaptureOutcome::Taken, "");
    EXPECT_EQ(TryWays(m_ways, {}, nullptr), std::nullopt);
    EXPECT_EQ(m_count, 2);
}

TEST_F(Ways, EndAtAFailure)
{
    Add(CaptureOutcome::NotOffered, "the first isn't there");
    Add(CaptureOutcome::Failed, "the second fails");
    Add(CaptureOutcome::Taken, "");
    EXPECT_EQ(TryWays(m_ways, {}, nullptr), "the first isn't there; the second fails");
    EXPECT_EQ(m_count, 2);
}

TEST_F(Ways, ThatAreAllMissingSayWhy)
{
    Add(CaptureOutcome::NotOffered, "the first isn't there");
    Add(CaptureOutcome::NotOffered, "nor is the second");
    EXPECT_EQ(TryWays(m_ways, {}, nullptr), "the first isn't there; nor is the second");
}

} // namespace
} // namespace Orvik::Desktops::Wayland
