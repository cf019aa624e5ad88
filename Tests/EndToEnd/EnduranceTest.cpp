// What becomes of the desktop, of files and of memory when much happens, or when a run ends in the middle of anything.
// `./test soak` runs these cases at full length, which it says by ORVIK_TEST_ENDURANCE; else they take seconds.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <random>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace Orvik::Tests
{
namespace
{

namespace fs = std::filesystem;

bool IsFullLength()
{
    return std::getenv("ORVIK_TEST_ENDURANCE") != nullptr;
}

int Choose(int brief, int full)
{
    return IsFullLength() ? full : brief;
}

class Endurance : public DesktopTest
{
protected:
    Endurance() : DesktopTest(320, 240) {}

    [[nodiscard]] Arguments MakeArguments() const
    {
        return {"-f", AddPicture(MakeTestPicture(320, 240)), "-o", GetOutput().string()};
    }

    struct Use
    {
        long residentBytes = 0;
        std::size_t descriptors = 0;
        unsigned int serverResources = 0;
    };

    [[nodiscard]] Use GetUse(const ChildProcess& process) const
    {
        const fs::path folder = "/proc/" + std::to_string(process.GetId());
        std::istringstream text(ReadText(folder / "statm"));
        long total = 0;
        long resident = 0;
        text >> total >> resident;
        const auto descriptors = std::distance(fs::directory_iterator(folder / "fd"), fs::directory_iterator());
        return {resident * sysconf(_SC_PAGESIZE), static_cast<std::size_t>(descriptors),
                m_overlay->CountServerResources()};
    }

    /// A person may work at once: nothing is grabbed, and no overlay is in the way.
    void ExpectFreeDesktop()
    {
        EXPECT_TRUE(m_overlay->WaitFor(OverlayWatcher::State::Missing));
        EXPECT_TRUE(m_input->CanGrab());
    }

    static void ShowProgress(const std::string& what, int done, int all)
    {
        if (IsFullLength())
            std::cout << what << ' ' << done << " of " << all << std::endl;
    }

    /// Inputs until the moment; then the signal, and what becomes of the process.
    void EndAt(std::chrono::milliseconds moment, int signal)
    {
        const auto end = std::chrono::steady_clock::now() + moment;
        ChildProcess process = Start(m_arguments);
        for (int step = 0; std::chrono::steady_clock::now() < end; ++step)
        {
            m_input->MoveTo({step * 7 % 320, step * 11 % 240});
            if (step % 10 == 3)
                m_input->PressButton(1);
            if (step % 10 == 8)
                m_input->ReleaseButton(1);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        process.SendSignal(signal);
        if (signal == SIGSTOP)
            process.SendSignal(SIGKILL); // a stopped one holds what it has until then
        EXPECT_FALSE(process.Wait(s_endLimit).isTimeout) << "signal " << signal;
        m_input->ReleaseButton(1);
    }

    Arguments m_arguments = MakeArguments();
};

TEST_F(Endurance, ARunThatEndsAtAnyMomentLeavesTheDesktopFree)
{
    constexpr std::array signals = {SIGKILL, SIGSEGV, SIGABRT, SIGSTOP, SIGTERM};
    const int moments = Choose(5, 100);
    std::mt19937 random(20261122);
    for (int index = 0; index < moments; ++index)
    {
        const std::chrono::milliseconds moment(random() % 500);
        const int signal = signals[static_cast<std::size_t>(index) % signals.size()];
        SCOPED_TRACE("signal " + std::to_string(signal) + " after " + std::to_string(moment.count()) + " ms");
        EndAt(moment, signal);
        ExpectFreeDesktop();
        if (HasFailure())
            return;
        ShowProgress("moment", index + 1, moments);
    }
    // Each picture that has a JSON file is whole.
    for (const fs::path& file : ListFiles(GetOutput()))
    {
        const fs::path picture = fs::path(file).replace_extension(".png");
        if (file.extension() == ".json")
        {
            EXPECT_NO_THROW(static_cast<void>(LoadPng(picture))) << picture;
        }
    }
}

TEST_F(Endurance, ManySnipsInOneRunTakeNoMore)
{
    const int snips = Choose(25, 10'000);
    ChildProcess process = StartOverlay(m_arguments, {160, 120});
    Use before;
    for (int index = 0; index < snips; ++index)
    {
        const Position from = {10 + index % 40, 20 + index % 30};
        Drag(from, {from.x + 60, from.y + 40});
        MoveTo({from.x + 61, from.y + 41});
        if (index == 9)
            before = GetUse(process); // once all that grows to its size has done so
        if (index % 100 == 99)
            ShowProgress("snip", index + 1, snips);
    }
    const std::vector<SnipFiles> files = WaitForSnips(GetOutput(), static_cast<std::size_t>(snips));
    const Use after = GetUse(process);
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_LE(after.residentBytes - before.residentBytes, 1'500'000);
    EXPECT_GT(before.serverResources, 0U);
    EXPECT_EQ(after.serverResources, before.serverResources);
    std::cout << snips << " snips: " << (after.residentBytes - before.residentBytes) / 1024 << " KiB more, "
              << after.descriptors << " descriptors, " << after.serverResources << " resources of the server\n";
    for (const SnipFiles& snip : files)
    {
        const Picture picture = LoadPng(snip.image);
        EXPECT_EQ(picture.width, 60);
        EXPECT_EQ(picture.height, 40);
    }
}

TEST_F(Endurance, RunsInARowLeaveNothingBehind)
{
    const int runs = Choose(3, 200);
    for (int index = 0; index < runs; ++index)
    {
        ChildProcess process = StartOverlay(m_arguments, {160, 120});
        Drag({10, 20}, {70, 60});
        static_cast<void>(WaitForSnips(GetOutput(), static_cast<std::size_t>(index) + 1));
        m_input->MoveTo({160, 120});
        ExpectAnswer(EndByEscape(process), 0, Answer::Success);
        ShowProgress("run", index + 1, runs);
    }
    ExpectFreeDesktop();
}

TEST_F(Endurance, AThousandInputsASecondAreTaken)
{
    ChildProcess process = StartOverlay(m_arguments, {160, 120});
    const Use before = GetUse(process);
    const int seconds = Choose(2, 600);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    int inputs = 0;
    for (auto next = std::chrono::steady_clock::now(); next < end; next += std::chrono::milliseconds(1), ++inputs)
    {
        std::this_thread::sleep_until(next);
        m_input->MoveTo({inputs * 7 % 320, inputs * 11 % 240});
        if (inputs % 10'000 == 9'999)
            ShowProgress("input", inputs + 1, 1'000 * seconds);
    }
    MoveTo({100, 75}); // the crosshair comes after all of it
    const Use after = GetUse(process);
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_EQ(after.serverResources, before.serverResources);
    EXPECT_LE(after.residentBytes - before.residentBytes, 8'000'000);
    std::cout << inputs << " inputs: " << (after.residentBytes - before.residentBytes) / 1024 << " KiB more, "
              << after.serverResources << " resources of the server\n";
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

} // namespace
} // namespace Orvik::Tests
