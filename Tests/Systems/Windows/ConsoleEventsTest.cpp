#include "Systems/Windows/ConsoleEvents.h"

#include <csignal>
#include <gtest/gtest.h>
#include <initializer_list>

namespace Orvik::System::Error
{
namespace
{

volatile std::sig_atomic_t s_raised = 0;

/// Notes which of the two is raised while it lives.
class RaisedSignals
{
public:
    RaisedSignals()
    {
        s_raised = 0;
        m_previousInterruption = std::signal(SIGINT, &Note);
        m_previousTermination = std::signal(SIGTERM, &Note);
    }
    ~RaisedSignals()
    {
        std::signal(SIGINT, m_previousInterruption);
        std::signal(SIGTERM, m_previousTermination);
    }
    RaisedSignals(const RaisedSignals&) = delete;
    RaisedSignals& operator=(const RaisedSignals&) = delete;

private:
    static void Note(int signal) { s_raised = signal; }

    void (*m_previousInterruption)(int) = nullptr;
    void (*m_previousTermination)(int) = nullptr;
};

/// The signal that an event raises; 0 for none.
int Raise(DWORD event, BOOL isHandled)
{
    const RaisedSignals signals;
    EXPECT_EQ(OnConsoleEvent(event), isHandled) << event;
    return s_raised;
}

TEST(ConsoleEvents, CtrlCAndCtrlBreakInterrupt)
{
    EXPECT_EQ(Raise(0, TRUE), SIGINT);
    EXPECT_EQ(Raise(1, TRUE), SIGINT);
}

TEST(ConsoleEvents, AClosedConsoleALogOffAndAShutdownTerminate)
{
    EXPECT_EQ(Raise(2, TRUE), SIGTERM);
    EXPECT_EQ(Raise(5, TRUE), SIGTERM);
    EXPECT_EQ(Raise(6, TRUE), SIGTERM);
}

TEST(ConsoleEvents, AnyOtherEventIsTheSystems)
{
    for (const DWORD event : {DWORD{3}, DWORD{4}, DWORD{7}, DWORD{0xFFFFFFFF}})
        EXPECT_EQ(Raise(event, FALSE), 0);
}

} // namespace
} // namespace Orvik::System::Error
