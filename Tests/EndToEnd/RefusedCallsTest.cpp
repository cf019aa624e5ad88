// Each call of the system, the X server and the driver that a run on X11 makes and that can fail, refused: one table
// says which, how, and what becomes of the run (RefusedCallsTable.cpp). It never hangs, never faults, keeps no
// descriptor, and leaves the desktop free. Each row is printed with what was seen.
#include "Tests/EndToEnd/RefusedCalls.h"
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"
#include "Tests/Support/Desktop/PaintedWindow.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <thread>

namespace Orvik::Tests
{
namespace
{

namespace fs = std::filesystem;

const char* Describe(Run run)
{
    switch (run)
    {
    case Run::Raster:
        return "raster";
    case Run::OpenGL:
        return "OpenGL";
    case Run::Picture:
        return "picture";
    case Run::Keys:
        return "keys";
    case Run::Delay:
        return "delay";
    case Run::Covered:
        return "covered";
    }
    return "";
}

/// Whether a person sees what is selected.
bool IsShown(Outcome outcome)
{
    return outcome != Outcome::Unseen && outcome != Outcome::Unheard;
}

/// What a row is called, in a test's name.
std::string MakeName(const RefusedCall& call)
{
    std::string name = call.name;
    if (call.way == Way::NoWindow)
        name += "_XError";
    else if (call.way != Way::System && call.way != Way::NoMemory)
        name += "_" + std::to_string(call.value);
    if (call.error != 0)
        name += std::string("_") + strerrorname_np(call.error);
    if (call.text != nullptr)
        name += std::string("_") + call.text;
    if (call.from > 1)
        name += "_" + std::to_string(call.from);
    if (call.count == 1)
        name += "_once";
    if (call.run != Run::Raster)
        name += std::string("_") + Describe(call.run);
    std::replace_if(
        name.begin(), name.end(), [](unsigned char character) { return std::isalnum(character) == 0; }, '_');
    return name;
}

std::string DescribeFailure(const RefusedCall& call)
{
    std::string text;
    switch (call.way)
    {
    case Way::NoWindow:
        text = "X error: no such window";
        break;
    case Way::NoMemory:
        text = "no memory";
        break;
    case Way::Descriptors:
        text = "no more than " + std::to_string(call.value);
        break;
    case Way::System:
        text = strerrorname_np(call.error);
        break;
    case Way::Returns:
    case Way::Fails:
        text = "returns " + std::to_string(call.value) + (call.error != 0 ? ", " : "") +
               (call.error != 0 ? strerrorname_np(call.error) : "");
        break;
    }
    if (call.text != nullptr)
        text += std::string(", for ") + call.text;
    if (call.from > 1)
        text += ", from call " + std::to_string(call.from);
    if (call.count == 1)
        text += ", once";
    if (call.too != nullptr)
        text += std::string(", and ") + call.too;
    if (call.run != Run::Raster)
        text += std::string(", ") + Describe(call.run);
    return text;
}

class RefusedCalls : public DesktopTest, public testing::WithParamInterface<RefusedCall>
{
protected:
    RefusedCalls() : DesktopTest(320, 240) {}

    /// A refusal can't be taken back, so a program of its own refuses, and becomes this one.
    [[nodiscard]] ChildProcess StartRefused(const RefusedCall& call)
    {
        Arguments arguments = {"-o", GetOutput().string()};
        if (call.run == Run::Picture)
            arguments.insert(arguments.end(), {"-f", AddPicture(MakeTestPicture(320, 240))});
        if (call.run == Run::Delay)
            arguments.insert(arguments.end(), {"-d", "50"});
        m_environment["ORVIK_RENDERER"] = call.run == Run::OpenGL ? "opengl" : "raster";
        ChildOptions options = m_installation.MakeStart(arguments);
        if (call.way == Way::System || call.way == Way::Descriptors)
        {
            const std::string what = call.way == Way::System ? std::to_string(call.value) : "descriptors";
            const long number = call.way == Way::System ? call.error : call.value;
            options.arguments.insert(options.arguments.begin(),
                                     {what, std::to_string(number), options.program.string()});
            options.program = ORVIK_WITHOUT_CALL;
            return StartWith(options);
        }
        m_environment["LD_PRELOAD"] = ORVIK_REFUSING_LIBRARY;
        // A program that looks a function up at its first call would put it back there then.
        m_environment["LD_BIND_NOW"] = "1";
        m_environment["ORVIK_REFUSED"] = MakeRefusal(call);
        if (call.too != nullptr)
            m_environment["ORVIK_REFUSED_TOO"] = std::string(call.too) + " returns 0 0 1 1000000000";
        m_environment["ORVIK_REFUSED_MARK"] = GetMark().string();
        return StartWith(options);
    }

    [[nodiscard]] static std::string MakeRefusal(const RefusedCall& call)
    {
        constexpr long noWindow = 0x1FFFFFFF;
        const char* const way = call.way == Way::Returns    ? "returns"
                                : call.way == Way::Fails    ? "fails"
                                : call.way == Way::NoMemory ? "throws"
                                                            : "replaces";
        const long value = call.way == Way::NoWindow ? noWindow : call.value;
        std::string text = std::string(call.name) + " " + way + " " + std::to_string(value) + " " +
                           std::to_string(call.error) + " " + std::to_string(call.from) + " " +
                           std::to_string(call.count);
        if (call.text != nullptr)
            text += " " + std::to_string(call.argument) + " " + call.text;
        return text;
    }

    /// The file that says that the call was made.
    [[nodiscard]] fs::path GetMark() const { return m_installation.GetHome() / "refused"; }

    [[nodiscard]] std::size_t Count(const std::string& extension) const
    {
        if (!fs::exists(GetOutput()))
            return 0;
        const std::vector<fs::path> files = ListFiles(GetOutput());
        return static_cast<std::size_t>(std::count_if(
            files.begin(), files.end(), [&](const fs::path& file) { return file.extension() == extension; }));
    }

    /// The program saves before it follows the pointer again. Where nothing is shown there is a pause instead. False if
    /// the run has ended.
    bool MoveOn(const ChildProcess& process, Position position, bool isShown)
    {
        constexpr std::chrono::milliseconds pause(300);
        constexpr std::chrono::milliseconds look(50);
        m_input->MoveTo(position);
        if (isShown)
            return process.WaitUntil([&] { return m_overlay->WaitForCrosshair(position, look); });
        return !process.HasEndedWithin(pause);
    }

    /// The pointer is there before the next step, if it can be moved at all.
    void PressArrow()
    {
        constexpr std::chrono::milliseconds pause(300);
        m_input->TapKey("Right");
        std::this_thread::sleep_for(pause);
    }

    /// Windows over the overlay until it has looked at one: it looks now and then, and comes back to the front.
    void Cover(const ChildProcess& process)
    {
        constexpr std::chrono::milliseconds pause(200);
        for (int tries = 0; tries < 50 && !fs::exists(GetMark()); ++tries)
        {
            const PaintedWindow cover(m_display->GetName(), {200, 150}, MakeTestPicture(20, 20));
            if (process.HasEndedWithin(pause))
                return;
        }
    }

    void Select(const ChildProcess& process, Position from, bool isShown)
    {
        if (!MoveOn(process, from, isShown))
            return;
        m_input->PressButton(1);
        MoveOn(process, {from.x + 60, from.y + 40}, isShown);
        m_input->ReleaseButton(1);
        MoveOn(process, {from.x + 70, from.y + 50}, isShown);
    }

    /// What the process has open: all of it, or only files in its directories.
    [[nodiscard]] std::ptrdiff_t CountDescriptors(const ChildProcess& process, bool onlyFiles) const
    {
        std::ptrdiff_t count = 0;
        std::error_code error; // the process may be gone
        for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(process.GetId()) + "/fd", error))
        {
            const std::string target = fs::read_symlink(entry.path(), error).string();
            count += !onlyFiles || target.starts_with(m_installation.GetHome().parent_path().string()) ? 1 : 0;
        }
        return count;
    }

    /// Two selections.
    void SelectTwice(const ChildProcess& process, const RefusedCall& call)
    {
        const bool isShown = IsShown(call.outcome);
        // The start is over once it has been refused what is there for showing it: with OpenGL in software that takes
        // seconds.
        for (int wait = 0; wait < 4 && !isShown && !fs::exists(GetMark()); ++wait)
            static_cast<void>(process.WaitUntil([this] { return fs::exists(GetMark()); }));
        if (call.run == Run::Covered)
            Cover(process);
        if (call.run == Run::Keys)
            PressArrow();
        Select(process, {10, 20}, isShown);
        const std::ptrdiff_t before = CountDescriptors(process, false);
        Select(process, {30, 40}, isShown);
        if (!process.IsRunning())
            return;
        EXPECT_EQ(CountDescriptors(process, false), before) << "a descriptor is kept";
        const std::ptrdiff_t files = CountDescriptors(process, true);
        EXPECT_LE(files, call.hasLog ? 1 : 0) << "the log file alone is open";
        // Which of the counted calls the log makes depends on the machine: it may be what was refused.
        EXPECT_TRUE(files == 1 || !call.hasLog || call.outcome == Outcome::AnyDefined) << "the log file is open";
    }

    /// Two selections and the end; what becomes of it.
    [[nodiscard]] ChildResult Work(const RefusedCall& call)
    {
        constexpr std::chrono::milliseconds escape(500);
        ChildProcess process = StartRefused(call);
        // A run that shows nothing ends by itself.
        if (process.WaitUntil([this] { return m_overlay->GetState() == OverlayWatcher::State::Visible; }))
            SelectTwice(process, call);
        m_input->TapKey("Escape");
        if (!process.HasEndedWithin(IsShown(call.outcome) ? s_endLimit / 4 : escape))
            process.SendSignal(SIGTERM);
        return process.Wait(s_endLimit);
    }

    [[nodiscard]] static bool HasAnswer(const ChildResult& result, int code, const char* answer)
    {
        return result.signal == 0 && result.exitCode == code && result.standardOutput.ends_with(answer);
    }

    [[nodiscard]] static Outcome JudgeSignal(const ChildResult& result)
    {
        const auto says = [&](const char* text) { return result.standardError.find(text) != std::string::npos; };
        if (result.signal != SIGABRT)
            return Outcome::Fault;
        if (says("Assertion: "))
            return Outcome::Assertion;
        if (says("Exception: ") || says("Unhandled Exception"))
            return Outcome::Report;
        return says("Signal 'SIGABRT' was raised") ? Outcome::Abort : Outcome::Fault;
    }

    [[nodiscard]] Outcome Judge(const ChildResult& result, const RefusedCall& call) const
    {
        if (result.isTimeout)
            return Outcome::Hang;
        if (result.signal != 0)
            return JudgeSignal(result);
        if (HasAnswer(result, 253, Answer::InitializeSystemsFailed))
            return Outcome::NoDisplay;
        if (HasAnswer(result, 252, Answer::CreateWindowFailed))
            return Outcome::NoWindow;
        if (HasAnswer(result, 251, "{\n    \"name\": \"Failed to initialize renderer\",\n    \"code\": -5\n}\n"))
            return Outcome::NoRenderer;
        if (HasAnswer(result, 254, Answer::LoadFileFailed))
            return Outcome::NoPicture;
        if (!HasAnswer(result, 0, Answer::Success) || Count(".part") != 0)
            return Outcome::Other;
        const std::size_t pictures = Count(".png");
        const std::size_t records = Count(".json");
        if (pictures == 2 && records == 2)
            return call.outcome == Outcome::Unseen ? Outcome::Unseen : Outcome::Snip;
        if (records != 0)
            return pictures == 2 && records == 1 ? Outcome::OneLost : Outcome::Other;
        if (pictures == 0)
            return call.outcome == Outcome::Unheard ? Outcome::Unheard : Outcome::NoFiles;
        return pictures == 2 ? Outcome::NoJson : Outcome::Other;
    }

    static void PrintRow(const RefusedCall& call, Outcome seen)
    {
        std::cout << "| " << std::left << std::setw(30) << call.name << " | " << std::setw(44) << DescribeFailure(call)
                  << " | " << Describe(seen) << " |\n";
    }
};

TEST_P(RefusedCalls, HaveTheirOutcome)
{
    const RefusedCall& call = GetParam();
    const ChildResult result = Work(call);
    const Outcome seen = Judge(result, call);
    PrintRow(call, seen);
    if (call.outcome == Outcome::AnyDefined)
    {
        EXPECT_LT(seen, Outcome::AnyDefined) << Describe(seen);
    }
    else
    {
        EXPECT_EQ(std::string(Describe(seen)), Describe(call.outcome));
    }
    const bool isMarked = call.way != Way::System && call.way != Way::Descriptors;
    EXPECT_TRUE(!isMarked || fs::exists(GetMark())) << "the program doesn't make this call";
    EXPECT_TRUE(m_overlay->WaitFor(OverlayWatcher::State::Missing));
    EXPECT_TRUE(m_input->CanGrab());
    if (HasFailure())
        std::cout << result.standardOutput << result.standardError << "exit " << result.exitCode << ", signal "
                  << result.signal << ", " << Count(".png") << " pictures, " << Count(".json") << " JSON files\n";
}

INSTANTIATE_TEST_SUITE_P(Calls, RefusedCalls, testing::ValuesIn(GetRefusedCalls().begin(), GetRefusedCalls().end()),
                         [](const testing::TestParamInfo<RefusedCall>& row) { return MakeName(row.param); });

} // namespace
} // namespace Orvik::Tests
