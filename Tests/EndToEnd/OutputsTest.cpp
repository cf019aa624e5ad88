// The outputs of a compositor: several, at places of their own, scaled and turned.
#include "Tests/EndToEnd/OutputFiles.h"
#include "Tests/EndToEnd/ProgramTest.h"
#include "Tests/Support/Desktop/InputDriver.h"
#include "Tests/Support/Desktop/NestedCompositor.h"
#include "Tests/Support/Desktop/Screen.h"
#include "Tests/Support/Overlay/OverlayModel.h"

#include <algorithm>
#include <csignal>
#include <ostream>
#include <sys/stat.h>
#include <thread>

namespace Orvik::Tests
{
namespace
{

using Clock = std::chrono::steady_clock;

/// How an output's window shows what its user sees upright.
enum class Turn
{
    None,
    Quarter, ///< clockwise
};

struct OutputSetup
{
    Area window; ///< on the X server's screen
    std::string configuration;
    Turn turn = Turn::None;
};

struct OutputsCase
{
    std::string name;
    std::vector<OutputSetup> outputs;
    std::size_t used; ///< the one that the pointer is on
};

void PrintTo(const OutputsCase& value, std::ostream* stream)
{
    *stream << value.name;
}

/// One output at the origin, and a second one left of it and above.
std::vector<OutputSetup> MakePair(const std::string& second)
{
    return {{{0, 0, 500, 450}, "position 0 0", Turn::None},
            {{500, 0, 620, 450}, "position -700 -200 " + second, Turn::None}};
}

/// The program on a sway with several outputs.
class OutputsOfSway : public ProgramTest
{
protected:
    void StartSway(const std::vector<OutputSetup>& outputs)
    {
        Area screen;
        CompositorOptions options;
        for (const OutputSetup& output : outputs)
        {
            options.windows.push_back(output.window);
            options.configuration +=
                "output X11-" + std::to_string(options.windows.size()) + " " + output.configuration + "\n";
            screen.width = std::max(screen.width, output.window.x + output.window.width);
            screen.height = std::max(screen.height, output.window.y + output.window.height);
        }
        options.width = screen.width;
        options.height = screen.height;
        m_compositor.emplace(options);
        for (const auto& [name, value] : m_compositor->GetEnvironment())
            m_environment[name] = value;
        if (m_compositor->GetUser() && !m_user)
        {
            m_user = m_compositor->GetUser();
            m_installation.OpenToOthers();
            umask(0); // what the test makes is the program's to change
        }
        m_screen.emplace(m_compositor->GetDisplayName());
        m_input.emplace(m_compositor->GetDisplayName());
        m_ground = m_compositor->ShowGround(MakeTestPicture(screen.width, screen.height, 3));
    }

    [[nodiscard]] std::filesystem::path GetOutput() const { return m_installation.GetWork() / "out"; }

    std::optional<NestedCompositor> m_compositor;
    std::optional<Screen> m_screen;
    std::optional<InputDriver> m_input;
    Picture m_ground; ///< the screen without the overlay
};

/// What is seen on one of them.
class Outputs : public OutputsOfSway, public testing::WithParamInterface<OutputsCase>
{
protected:
    void SetUp() override { StartSway(GetParam().outputs); }

    [[nodiscard]] const OutputSetup& GetUsed() const { return GetParam().outputs.at(GetParam().used); }
    [[nodiscard]] bool IsTurned() const { return GetUsed().turn == Turn::Quarter; }

    /// The part of the screen's picture in the used output's window, as its user sees it.
    [[nodiscard]] Picture See(const Picture& screen) const
    {
        const Picture shown = screen.Crop(GetUsed().window);
        return IsTurned() ? shown.Turned() : shown;
    }

    /// The pointer is on a pixel's left and upper edge, and a turn makes its lower edge of the left one.
    void Point(Position seen)
    {
        const Area& window = GetUsed().window;
        const Position place = IsTurned() ? Position{window.width - seen.y, seen.x} : seen;
        m_input->MoveTo({window.x + place.x, window.y + place.y});
    }

    /// Waits until the used output looks so.
    void ExpectLook(const Look& look)
    {
        const Area all{0, 0, look.picture.width, look.picture.height};
        const auto end = Clock::now() + s_endLimit;
        std::string difference = DescribeDifference(look, See(m_screen->CaptureAll()), all);
        for (int round = 1; !difference.empty() && Clock::now() < end; ++round)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            if (round % 100 == 0)
                m_input->Nudge();
            difference = DescribeDifference(look, See(m_screen->CaptureAll()), all);
        }
        EXPECT_EQ(difference, "");
    }

    /// The windows of the other outputs show what they did before.
    void ExpectOthersUntouched() const
    {
        const Picture now = m_screen->CaptureAll();
        for (std::size_t index = 0; index < GetParam().outputs.size(); ++index)
        {
            const Area& window = GetParam().outputs[index].window;
            if (index == GetParam().used)
                continue;
            EXPECT_EQ(now.Crop(window), m_ground.Crop(window)) << index;
        }
    }
};

/// Outputs and compositors that go away.
class LostOutputs : public OutputsOfSway
{
protected:
    /// Starts the program on the second of two outputs. Returns once its overlay is there.
    [[nodiscard]] ChildProcess StartOnTheSecond(const Arguments& more = {})
    {
        StartSway(MakePair(""));
        m_input->MoveTo({700, 100});
        Arguments arguments = {"-o", GetOutput().string()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Start(arguments);
    }

    [[nodiscard]] bool WaitForOverlay(const ChildProcess& process) const
    {
        return process.WaitUntil([this] { return m_screen->CaptureAll() != m_ground; });
    }

    /// False if its window stays.
    [[nodiscard]] bool UnplugTheSecond() const
    {
        m_compositor->Unplug(1);
        const auto end = Clock::now() + s_endLimit;
        const auto isPlain = [this]
        {
            const Picture left = m_screen->CaptureAll().Crop(MakePair("").at(1).window);
            return std::all_of(left.pixels.begin(), left.pixels.end(),
                               [&left](std::uint32_t pixel) { return pixel == left.pixels.front(); });
        };
        while (!isPlain() && Clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return isPlain();
    }

    void ExpectEndByTerminate(ChildProcess& process) const
    {
        process.SendSignal(SIGTERM);
        EXPECT_TRUE(process.HasEndedWithin(std::chrono::seconds(5)));
        ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
        EXPECT_TRUE(ListFiles(GetOutput()).empty());
    }
};

TEST_P(Outputs, TheOneWithThePointerIsCoveredAndItsPixelsAreSaved)
{
    const Picture desktop = See(m_ground);
    const OverlayModel model(desktop.width, desktop.height, desktop);
    OverlayState state;
    state.cursor = {30, 40};
    Point(state.cursor);
    ChildProcess process = Start({"-s", "true", "-o", GetOutput().string()});
    ExpectLook(model.MakeLook(state));
    ExpectOthersUntouched();
    m_input->PressButton(1);
    state.anchor = state.cursor;
    state.cursor = {231, 137};
    Point(state.cursor);
    ExpectLook(model.MakeLook(state));
    m_input->ReleaseButton(1);
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    EXPECT_EQ(LoadPng(WaitForSnips(GetOutput(), 1).front().image), desktop.Crop({30, 40, 201, 97}));
}

// The window is closed by the system then, which ends no run.
TEST_F(LostOutputs, OneThatGoesTakesTheOverlayWithItAndTheRunRests)
{
    ChildProcess process = StartOnTheSecond();
    ASSERT_TRUE(WaitForOverlay(process));
    ASSERT_TRUE(UnplugTheSecond());
    EXPECT_FALSE(process.HasEndedWithin(std::chrono::milliseconds(500)));
    EXPECT_EQ(m_screen->CaptureAll().Crop({0, 0, 500, 450}), m_ground.Crop({0, 0, 500, 450}));
    ExpectEndByTerminate(process);
}

TEST_F(LostOutputs, OneThatGoesDuringADelayIsNotCaptured)
{
    ChildProcess process = StartOnTheSecond({"-d", "1000"});
    ASSERT_TRUE(process.WaitUntil([&process] { return process.GetOutput().find("Using '") != std::string::npos; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    ASSERT_TRUE(UnplugTheSecond());
    EXPECT_FALSE(process.HasEndedWithin(std::chrono::milliseconds(800)));
    EXPECT_EQ(m_screen->CaptureAll().Crop({0, 0, 500, 450}), m_ground.Crop({0, 0, 500, 450}));
    ExpectEndByTerminate(process);
}

TEST_F(LostOutputs, ACompositorThatEndsDuringTheStartEndsTheRun)
{
    for (const int milliseconds : {10, 80})
    {
        SCOPED_TRACE(milliseconds);
        ChildProcess process = StartOnTheSecond();
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        m_screen.reset();
        m_input.reset();
        m_compositor.reset();
        const ChildResult result = process.Wait(std::chrono::seconds(10));
        EXPECT_FALSE(result.isTimeout);
        EXPECT_EQ(result.signal, 0) << result.standardError;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Of, Outputs,
    testing::Values(OutputsCase{"TheFirst", MakePair("scale 1"), 0}, OutputsCase{"TheSecond", MakePair("scale 1"), 1},
                    OutputsCase{"TheSecondAtAQuarterMore", MakePair("scale 1.25"), 1},
                    OutputsCase{"TheSecondAtAHalfMore", MakePair("scale 1.5"), 1},
                    OutputsCase{"TheSecondAtTwice", MakePair("scale 2"), 1},
                    OutputsCase{"ATurned", {{{0, 0, 600, 420}, "transform 90", Turn::Quarter}}, 0}),
    [](const auto& parameter) { return parameter.param.name; });

} // namespace
} // namespace Orvik::Tests
