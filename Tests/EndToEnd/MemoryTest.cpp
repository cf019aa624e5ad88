// What a long run needs, seen from outside.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/Support/Desktop/Monitors.h"

#include <sstream>
#include <unistd.h>

namespace Orvik::Tests
{
namespace
{

class Memory : public DesktopTest
{
protected:
    /// A small monitor, so that the many frames take no time.
    static constexpr Area s_monitor{0, 0, 200, 150};

    /// Moves over the monitor and back to its middle.
    void Wander(int moves)
    {
        for (int move = 0; move < moves; ++move)
            m_input->MoveTo({move * 7 % s_monitor.width, move * 11 % s_monitor.height});
        MoveTo({100, 75});
    }

    /// Through the whole range and back, over and over.
    void Zoom(int steps)
    {
        constexpr int range = 5;
        for (int step = 0; step < steps; ++step)
            m_input->TapKey(step / range % 2 == 0 ? "equal" : "minus");
        MoveTo({101, 75});
        MoveTo({100, 75});
    }

    /// The resident memory in bytes.
    [[nodiscard]] static long GetResidentBytes(const ChildProcess& process)
    {
        std::istringstream text(ReadText("/proc/" + std::to_string(process.GetId()) + "/statm"));
        long total = 0;
        long resident = 0;
        text >> total >> resident;
        return resident * sysconf(_SC_PAGESIZE);
    }
};

TEST_F(Memory, StaysFlatOverMovesAndZoomSteps)
{
    SetMonitors(m_display->GetName(), {s_monitor}, 0);
    m_overlay.emplace(m_display->GetName(), s_monitor);
    m_input->MoveTo({100, 75});
    ChildProcess process = StartOverlay({"-o", GetOutput().string()}, {100, 75});
    // Once through everything, so that what grows to its size has done so.
    Wander(3'000);
    Zoom(100);

    // The system hands memory out in large pieces at times; what is lost for good is lost in each round.
    constexpr int rounds = 3;
    constexpr long slack = 500'000;
    long growth = slack + 1;
    for (int round = 0; round < rounds && growth > slack; ++round)
    {
        const long before = GetResidentBytes(process);
        Wander(10'000);
        Zoom(200);
        growth = GetResidentBytes(process) - before;
    }
    RecordProperty("growth", static_cast<int>(growth));
    EXPECT_LE(growth, slack);
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

} // namespace
} // namespace Orvik::Tests
