// What the time from the start to the first frame is made of: the program's own start-up steps, one after the other, in
// this process on a virtual display.
//
//   StartTimings WIDTHxHEIGHT [RUNS]      prints the median of each step in milliseconds
//
// A run is a child process of its own, so that every run starts cold in the way a new process does.
#include "Application/DesktopChoice.h"
#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Tools/SnipBench.h"
#include "Core/System/Desktop/DisplayCache.h"
#include "Core/System/Desktop/Window.h"
#include "Core/System/Runtime/Application.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Tests/Support/VirtualDisplay.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

using namespace Orvik;
using System::Desktop::Window;
using System::Device::Display::DisplayCache;

constexpr std::array<const char*, 7> s_steps = {"display list (X connection)",
                                                "painter and window",
                                                "renderer (context or memory, font)",
                                                "show and focus",
                                                "capture and tool",
                                                "first frame",
                                                "second frame"};

using Times = std::array<double, s_steps.size()>;

class BenchmarkApplication final : public System::Runtime::Application
{
public:
    BenchmarkApplication() : Application(L"StartTimings") {}

    DisplayCache& CreateDisplays()
    {
        m_displaySystem = {new DisplayCache, [](DisplayCache* system) { delete system; }};
        if (!m_displaySystem->Initialize(nullptr))
            std::exit(EXIT_FAILURE);
        return *m_displaySystem;
    }
};

/// Takes the time between its calls.
class Stopwatch
{
public:
    void Lap()
    {
        const std::int64_t now = System::Time::GetMonotonicNanoseconds();
        m_times[m_step++] = static_cast<double>(now - m_last) / 1e6;
        m_last = now;
    }

    [[nodiscard]] const Times& GetTimes() const { return m_times; }

private:
    std::int64_t m_last = System::Time::GetMonotonicNanoseconds();
    std::size_t m_step = 0;
    Times m_times = {};
};

Times MeasureStart()
{
    BenchmarkApplication application;
    Stopwatch stopwatch;
    const auto& display = *application.CreateDisplays().GetDisplay(1);
    stopwatch.Lap();

    Window window(nullptr, "Orvik::StartTimings", {display.x, display.y - 1}, {display.width, display.height + 1U},
                  System::Desktop::WindowType::Overlay);
    Graphics::Renderer::PainterChoice painter = Graphics::Renderer::ChoosePainter();
    window.SetSurfaceKind(painter.kind);
    if (!window.Create())
        std::exit(EXIT_FAILURE);
    stopwatch.Lap();

    Graphics::Renderer::Renderer renderer;
    renderer.SetPainter(std::move(painter));
    if (!renderer.Initialize(window.GetNativeWindow(), window.GetWindowClassName()))
        std::exit(EXIT_FAILURE);
    renderer.Resize(window.GetNativeWindow(), display.width, display.height);
    stopwatch.Lap();

    const auto lock = window.Lock();
    window.Show(lock);
    window.SetClickThrough(false);
    window.BringToFront();
    stopwatch.Lap();

    Graphics::Tools::SnipBench tool;
    tool.findDisplay = [](std::uint16_t id) { return BenchmarkApplication::GetSystem<DisplayCache>().GetDisplay(id); };
    System::Tools::ToolContext context;
    context.displayIds = {1, 1};
    tool.Start(context, {}, renderer);
    stopwatch.Lap();

    for (int frame = 0; frame < 2; ++frame)
    {
        window.Update();
        renderer.Invalidate(); // or nothing would be drawn the second time
        renderer.Render(window.GetNativeWindow());
        stopwatch.Lap();
    }
    renderer.Shutdown(window.GetNativeWindow());
    return stopwatch.GetTimes();
}

/// Measures in a child; its times come back through a pipe.
Times MeasureInChild()
{
    std::array<int, 2> ends = {};
    if (pipe(ends.data()) != 0)
        std::exit(EXIT_FAILURE);
    const pid_t child = fork();
    if (child == 0)
    {
        const Times times = MeasureStart();
        const bool isWritten = write(ends[1], times.data(), sizeof times) == sizeof times;
        _exit(isWritten ? 0 : 1);
    }
    close(ends[1]);
    Times times = {};
    const bool isRead = read(ends[0], times.data(), sizeof times) == sizeof times;
    close(ends[0]);
    waitpid(child, nullptr, 0);
    if (!isRead)
        std::exit(EXIT_FAILURE);
    return times;
}

} // namespace

int main(int argc, char** argv)
{
    Orvik::Desktops::SetDesktop(Orvik::Desktops::ChooseDesktop().desktop);
    unsigned width = 1920;
    unsigned height = 1080;
    if (argc > 1 && std::sscanf(argv[1], "%ux%u", &width, &height) != 2)
        return EXIT_FAILURE;
    const int runs = argc > 2 ? std::max(std::atoi(argv[2]), 1) : 7;

    const Tests::VirtualDisplay display(width, height);
    setenv("DISPLAY", display.GetName().c_str(), 1);
    std::vector<Times> results;
    for (int run = 0; run < runs; ++run)
        results.push_back(MeasureInChild());

    fmt::print("Start at {}x{}, median of {} runs, milliseconds\n", width, height, runs);
    for (std::size_t step = 0; step < s_steps.size(); ++step)
    {
        std::sort(results.begin(), results.end(),
                  [step](const Times& left, const Times& right) { return left[step] < right[step]; });
        fmt::print("  {:<34} {:8.2f}\n", s_steps[step], results[results.size() / 2][step]);
    }
    return EXIT_SUCCESS;
}
