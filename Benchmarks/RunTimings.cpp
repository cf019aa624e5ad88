// Times the built program from outside, on a virtual display, the way a person works with it:
//
//   RunTimings PROGRAM WIDTHxHEIGHT [RUNS]
//
// prints the medians of: the start of the process to the first frame on the screen; the release of the button to both
// files closed; the release to the end of the process; and the peak of its memory.
#include "Tests/Support/Desktop/OverlaySteps.h"
#include "Tests/Support/Desktop/Picture.h"
#include "Tests/Support/Desktop/Screen.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/VirtualDisplay.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <functional>
#include <string>
#include <sys/inotify.h>
#include <unistd.h>
#include <vector>

namespace
{

using namespace Orvik::Tests;
using Clock = std::chrono::steady_clock;

double GetMilliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

struct RunResult
{
    double firstFrame = 0.0;  ///< milliseconds from the start of the process
    double filesClosed = 0.0; ///< milliseconds from the release of the button
    double processEnd = 0.0;  ///< milliseconds from the release of the button
    double peakMemory = 0.0;  ///< MiB, the largest resident set
};

/// Waits until two files of the watched directory were closed after writing.
void WaitForFiles(int watch)
{
    std::array<char, 4096> events = {};
    int closed = 0;
    while (closed < 2)
    {
        const ssize_t size = read(watch, events.data(), events.size());
        if (size <= 0)
            std::exit(EXIT_FAILURE);
        for (ssize_t offset = 0; offset < size; ++closed)
        {
            inotify_event event = {};
            std::copy_n(events.data() + offset, sizeof event, reinterpret_cast<char*>(&event));
            offset += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
}

RunResult MeasureRun(const ChildOptions& options, const std::string& displayName, const std::string& directory)
{
    InputDriver input(displayName);
    const OverlayWatcher overlay(displayName);
    input.MoveTo({100, 100});
    const int watch = inotify_init1(IN_CLOEXEC);
    inotify_add_watch(watch, directory.c_str(), IN_CLOSE_WRITE);

    RunResult result;
    const auto start = Clock::now();
    ChildProcess process(options);
    AwaitOverlay(process, overlay, {100, 100});
    result.firstFrame = GetMilliseconds(Clock::now() - start);

    input.PressButton(1);
    MoveMouse(input, overlay, {1380, 820}, {1380, 820});
    const auto release = Clock::now();
    input.ReleaseButton(1);
    WaitForFiles(watch);
    result.filesClosed = GetMilliseconds(Clock::now() - release);
    const ChildResult end = process.Wait(std::chrono::seconds(20));
    result.processEnd = GetMilliseconds(Clock::now() - release);
    result.peakMemory = static_cast<double>(end.peakMemory) / (1024.0 * 1024.0);
    close(watch);
    return result;
}

void PrintMedian(const char* name, const char* unit, std::vector<RunResult> results,
                 const std::function<double(const RunResult&)>& get)
{
    std::sort(results.begin(), results.end(),
              [&get](const RunResult& left, const RunResult& right) { return get(left) < get(right); });
    fmt::print("  {:<44} {:8.1f} {}  ({:.1f} to {:.1f})\n", name, get(results[results.size() / 2]), unit,
               get(results.front()), get(results.back()));
}

} // namespace

int main(int argc, char** argv)
{
    unsigned width = 0;
    unsigned height = 0;
    if (argc < 3 || std::sscanf(argv[2], "%ux%u", &width, &height) != 2)
    {
        std::fputs("usage: RunTimings PROGRAM WIDTHxHEIGHT [RUNS]\n", stderr);
        return 2;
    }
    const int runs = argc > 3 ? std::max(std::atoi(argv[3]), 1) : 7;
    const TemporaryDirectory home;
    const std::string directory = (home.GetPath() / "out").string();
    std::filesystem::create_directories(directory);
    const VirtualDisplay display(width, height);
    Screen screen(display.GetName());
    screen.ShowOnRoot(MakeTestPicture(screen.GetWidth(), screen.GetHeight()));
    const ChildOptions options{argv[1],
                               {"-s", "true", "-o", directory},
                               MakeEnvironment({{"DISPLAY", display.GetName()}, {"HOME", home.GetPath().string()}}),
                               "."};
    std::vector<RunResult> results;
    for (int run = 0; run < runs; ++run)
        results.push_back(MeasureRun(options, display.GetName(), directory));

    fmt::print("Run at {}x{}, a snip of 1280x720, median of {} runs (least to greatest)\n", width, height, runs);
    PrintMedian("start to first frame", "ms", results, [](const RunResult& result) { return result.firstFrame; });
    PrintMedian("release to both files closed", "ms", results,
                [](const RunResult& result) { return result.filesClosed; });
    PrintMedian("release to the end of the process", "ms", results,
                [](const RunResult& result) { return result.processEnd; });
    PrintMedian("peak resident memory", "MiB", results, [](const RunResult& result) { return result.peakMemory; });
    return EXIT_SUCCESS;
}
