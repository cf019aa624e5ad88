// Times any program that lets a person select a region on Wayland, from outside, on a sway in a virtual X server:
//
//   SwayTimings WIDTHxHEIGHT RUNS FILES COMMAND
//
// A shell runs the command with the folder for its files in OUT, in each run anew. Prints the medians of: the start of
// the command to the first change of the screen; the release of the button to so many files closed; the release to the
// end of the command. And of one run more: the processor time of three seconds of rest, and the greatest sum of the
// processes' peaks of memory. What the session's bus starts for the command isn't counted.
#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/Desktop/InputDriver.h"
#include "Tests/Support/Desktop/NestedCompositor.h"
#include "Tests/Support/Desktop/Screen.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <functional>
#include <optional>
#include <poll.h>
#include <sstream>
#include <string>
#include <sys/inotify.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

using namespace Orvik::Tests;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds s_limit(20);

double GetMilliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

[[noreturn]] void GiveUp(const char* reason)
{
    fmt::print(stderr, "SwayTimings: {}\n", reason);
    std::exit(EXIT_FAILURE);
}

struct RunResult
{
    double firstFrame = 0.0;  ///< milliseconds from the start of the command
    double filesClosed = 0.0; ///< milliseconds from the release of the button
    double processEnd = 0.0;  ///< milliseconds from the release of the button
};

/// What the processes of a command have used.
struct Usage
{
    double seconds = 0.0; ///< of processors
    double memory = 0.0;  ///< MiB, the sum of the peaks
};

/// Empty where there is no such file, or no more: processes end while they are looked at.
std::string ReadText(const std::string& path)
{
    const std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

Usage GetUsage(pid_t process)
{
    const std::string folder = fmt::format("/proc/{}/", process);
    Usage usage;
    const std::string text = ReadText(folder + "stat");
    std::istringstream numbers(text.substr(std::min(text.rfind(')') + 1, text.size())));
    constexpr int itemsBefore = 11;
    std::string item;
    for (int index = 0; index < itemsBefore; ++index)
        numbers >> item;
    long inProgram = 0;
    long inSystem = 0;
    numbers >> inProgram >> inSystem;
    usage.seconds = static_cast<double>(inProgram + inSystem) / static_cast<double>(sysconf(_SC_CLK_TCK));
    const std::string status = ReadText(folder + "status");
    const std::size_t peak = status.find("VmHWM:");
    if (peak != std::string::npos)
        usage.memory = std::strtod(status.c_str() + peak + 6, nullptr) / 1024.0;
    std::istringstream children(ReadText(folder + fmt::format("task/{}/children", process)));
    for (pid_t child = 0; children >> child;)
    {
        const Usage more = GetUsage(child);
        usage.seconds += more.seconds;
        usage.memory += more.memory;
    }
    return usage;
}

/// One command, from its start to its end, and the person at it.
class Run
{
public:
    Run(NestedCompositor& compositor, const std::string& command)
        : m_screen(compositor.GetDisplayName()),
          m_input(compositor.GetDisplayName()),
          m_ground(compositor.GetShown().Crop(GetProbe(compositor.GetShown()))),
          m_probe(GetProbe(compositor.GetShown())),
          m_watch(inotify_init1(IN_CLOEXEC | IN_NONBLOCK))
    {
        m_input.MoveTo({100, 100});
        Await([this] { return m_screen.Capture(m_probe) == m_ground; }, "the screen isn't free");
        const std::string folder = std::getenv("OUT");
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        inotify_add_watch(m_watch, folder.c_str(), IN_CLOSE_WRITE);
        m_start = Clock::now();
        m_process.emplace(ChildOptions{"/bin/sh", {"-c", command}, MakeEnvironment({}), "."});
    }
    ~Run() { close(m_watch); }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    [[nodiscard]] double AwaitFrame()
    {
        Await([this] { return m_screen.Capture(m_probe) != m_ground; }, "nothing is shown");
        return GetMilliseconds(Clock::now() - m_start);
    }

    /// Presses, and drags to where the button is to be released.
    void Drag()
    {
        constexpr std::chrono::milliseconds pause(300);
        std::this_thread::sleep_for(pause);
        m_input.MoveTo({101, 101});
        std::this_thread::sleep_for(pause);
        m_input.PressButton(1);
        constexpr int steps = 16;
        for (int step = 1; step <= steps; ++step)
        {
            m_input.MoveTo({101 + 1280 * step / steps, 101 + 720 * step / steps});
            std::this_thread::sleep_for(pause / steps);
        }
        std::this_thread::sleep_for(pause);
    }

    void Release(RunResult& result, int files)
    {
        const auto release = Clock::now();
        m_input.ReleaseButton(1);
        Await([&] { return CountClosed() >= files; }, "there are no files");
        result.filesClosed = GetMilliseconds(Clock::now() - release);
        Await([this] { return !m_process->IsRunning(); }, "the command doesn't end");
        result.processEnd = GetMilliseconds(Clock::now() - release);
    }

    [[nodiscard]] pid_t GetProcess() const { return m_process->GetId(); }

private:
    /// What is looked at: a part that a selector changes and the selection doesn't reach.
    [[nodiscard]] static Area GetProbe(const Picture& shown) { return {shown.width - 40, shown.height - 60, 16, 16}; }

    static void Await(const std::function<bool()>& condition, const char* reason)
    {
        const auto end = Clock::now() + s_limit;
        while (!condition())
        {
            if (Clock::now() > end)
                GiveUp(reason);
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    }

    int CountClosed()
    {
        std::array<char, 4096> events = {};
        const ssize_t size = read(m_watch, events.data(), events.size());
        for (ssize_t offset = 0; offset < size; ++m_closed)
        {
            inotify_event event = {};
            std::copy_n(events.data() + offset, sizeof event, reinterpret_cast<char*>(&event));
            offset += static_cast<ssize_t>(sizeof event + event.len);
        }
        return m_closed;
    }

    Screen m_screen;
    InputDriver m_input;
    Picture m_ground;
    Area m_probe;
    int m_watch;
    int m_closed = 0;
    Clock::time_point m_start;
    std::optional<ChildProcess> m_process;
};

RunResult MeasureRun(NestedCompositor& compositor, const std::string& command, int files)
{
    Run run(compositor, command);
    RunResult result;
    result.firstFrame = run.AwaitFrame();
    run.Drag();
    run.Release(result, files);
    return result;
}

void MeasureUsage(NestedCompositor& compositor, const std::string& command, int files)
{
    Run run(compositor, command);
    static_cast<void>(run.AwaitFrame());
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const Usage before = GetUsage(run.GetProcess());
    std::this_thread::sleep_for(std::chrono::seconds(3));
    const Usage after = GetUsage(run.GetProcess());
    run.Drag();
    double peak = 0.0;
    std::jthread watcher(
        [&peak, process = run.GetProcess()](const std::stop_token& stop)
        {
            while (!stop.stop_requested())
            {
                peak = std::max(peak, GetUsage(process).memory);
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
    RunResult ignored;
    run.Release(ignored, files);
    watcher.request_stop();
    watcher.join();
    fmt::print("  {:<44} {:8.1f} ms\n", "processor time of three seconds' rest",
               (after.seconds - before.seconds) * 1e3);
    fmt::print("  {:<44} {:8.1f} MiB\n", "peak resident memory", peak);
}

void PrintMedian(const char* name, std::vector<RunResult> results, double RunResult::*member)
{
    std::sort(results.begin(), results.end(),
              [member](const RunResult& left, const RunResult& right) { return left.*member < right.*member; });
    fmt::print("  {:<44} {:8.1f} ms  ({:.1f} to {:.1f})\n", name, results[results.size() / 2].*member,
               results.front().*member, results.back().*member);
}

} // namespace

int main(int argc, char** argv)
{
    CompositorOptions options;
    if (argc != 5 || std::sscanf(argv[1], "%dx%d", &options.width, &options.height) != 2 || options.width < 1600 ||
        options.height < 900)
    {
        std::fputs("usage: SwayTimings WIDTHxHEIGHT RUNS FILES COMMAND (at least 1600x900)\n", stderr);
        return 2;
    }
    const int runs = std::max(std::atoi(argv[2]), 1);
    const int files = std::max(std::atoi(argv[3]), 1);
    std::string pattern = (std::filesystem::temp_directory_path() / "snipbench-benchmark-XXXXXX").string();
    const std::filesystem::path directory = mkdtemp(pattern.data());
    NestedCompositor compositor(options);
    compositor.ShowGround(MakeTestPicture(options.width, options.height));
    setenv("OUT", (directory / "out").c_str(), 1);
    setenv("HOME", directory.c_str(), 1);
    unsetenv("DISPLAY");
    for (const auto& [name, value] : compositor.GetEnvironment())
        setenv(name.c_str(), value.c_str(), 1);

    constexpr int warming = 2;
    std::vector<RunResult> results;
    for (int run = -warming; run < runs; ++run)
    {
        const RunResult result = MeasureRun(compositor, argv[4], files);
        if (run >= 0)
            results.push_back(result);
    }
    fmt::print("{}\n  on sway at {}x{}, a snip of 1280x720, median of {} runs (least to greatest)\n", argv[4],
               options.width, options.height, runs);
    PrintMedian("start to first frame", results, &RunResult::firstFrame);
    PrintMedian("release to files closed", results, &RunResult::filesClosed);
    PrintMedian("release to the end of the command", results, &RunResult::processEnd);
    MeasureUsage(compositor, argv[4], files);
    std::filesystem::remove_all(directory);
    return EXIT_SUCCESS;
}
