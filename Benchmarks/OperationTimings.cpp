// What single operations of a run cost, on a virtual display, drawn as the program would (ORVIK_RENDERER decides):
//
//   OperationTimings WIDTHxHEIGHT [RUNS]      prints the median of each in microseconds
//
// and of the capture of the display also the ratio to one copy of its bytes in memory.
#include "Application/DesktopChoice.h"
#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Tools/SnipBench.h"
#include "Core/System/Desktop/CaptureContext.h"
#include "Core/System/Desktop/DisplayCache.h"
#include "Core/System/Desktop/KeyCode.h"
#include "Core/System/Desktop/Window.h"
#include "Core/System/Runtime/Application.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Tests/Support/Desktop/Screen.h"
#include "Tests/Support/SnipBenchProbe.h"
#include "Tests/Support/VirtualDisplay.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <functional>
#include <utility>
#include <vector>

namespace
{

using namespace Orvik;
using System::Desktop::KeyCode;
using System::Desktop::Window;
using System::Device::Display::CaptureContext;
using System::Device::Display::DisplayCache;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;

class BenchmarkApplication final : public System::Runtime::Application
{
public:
    BenchmarkApplication() : Application(L"OperationTimings")
    {
        m_displaySystem = {new DisplayCache, [](DisplayCache* system) { delete system; }};
        if (!m_displaySystem->Initialize(nullptr))
            std::exit(EXIT_FAILURE);
    }

    [[nodiscard]] const System::Device::Display::DisplayDescriptor& GetDisplay() const
    {
        return *m_displaySystem->GetDisplay(1);
    }
};

/// The median of `runs` calls, microseconds. `prepare` runs before each, untimed.
double Measure(int runs, const std::function<void(int)>& operation, const std::function<void()>& prepare = {})
{
    std::vector<double> times;
    for (int run = 0; run < runs; ++run)
    {
        if (prepare)
            prepare();
        const std::int64_t begin = System::Time::GetMonotonicNanoseconds();
        operation(run);
        times.push_back(static_cast<double>(System::Time::GetMonotonicNanoseconds() - begin) / 1e3);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void Print(const char* name, double microseconds)
{
    fmt::print("  {:<44} {:10.1f}\n", name, microseconds);
}

/// The overlay with the tool on it, as the program has it.
class Overlay
{
public:
    explicit Overlay(const BenchmarkApplication& application)
        : m_display(application.GetDisplay()),
          m_window(nullptr, "Orvik::OperationTimings", {m_display.x, m_display.y - 1},
                   {m_display.width, m_display.height + 1U}, System::Desktop::WindowType::Overlay)
    {
        Graphics::Renderer::PainterChoice painter = Graphics::Renderer::ChoosePainter();
        m_window.SetSurfaceKind(painter.kind);
        m_renderer.SetPainter(std::move(painter));
        if (!m_window.Create() || !m_renderer.Initialize(m_window.GetNativeWindow(), m_window.GetWindowClassName()))
            std::exit(EXIT_FAILURE);
        m_renderer.Resize(m_window.GetNativeWindow(), m_display.width, m_display.height);
        m_window.Show(m_window.Lock());
        ToolContext context = MakeContext(ToolEventType::MouseMove);
        m_tool.findDisplay = [](std::uint16_t id)
        { return BenchmarkApplication::GetSystem<DisplayCache>().GetDisplay(id); };
        m_tool.Start(context, {true, nullptr, {}}, m_renderer);
        Render();
    }
    ~Overlay() { m_renderer.Shutdown(m_window.GetNativeWindow()); }
    Overlay(const Overlay&) = delete;
    Overlay& operator=(const Overlay&) = delete;

    void PrintTimes(int runs)
    {
        Graphics::Renderer::TextRenderer& texts = m_renderer.GetTextRenderer();
        std::uint16_t label = 0;
        texts.Create(label, "0, 0", m_renderer);
        Print("SetText of a coordinates label",
              Measure(100 * runs,
                      [&](int run) { texts.SetText(label, run % 2 == 0 ? "1234, 1234" : "999, 1000", m_renderer); }));
        texts.Remove(label);

        const auto render = [this] { Render(); };
        Print("magnifier update", Measure(
                                      runs, [&](int) { m_tool.UpdateMagnifier(m_renderer); }, render));
        Print("Update for a mouse move", Measure(
                                             runs, [this](int run) { Move(run); }, render));
        Print("Render after a mouse move", Measure(
                                               runs, [this](int) { Render(); }, [this] { Move(++m_moves); }));
        Print("Update for a zoom step", Measure(
                                            runs, [this](int run) { Zoom(run); }, render));
        ToolContext press = MakeContext(ToolEventType::MouseButton);
        m_tool.Update(press, m_renderer);
        Print("Update for a mouse move while selecting", Measure(
                                                             runs, [this](int run) { Move(run); }, render));
    }

private:
    [[nodiscard]] static ToolContext MakeContext(ToolEventType type)
    {
        ToolContext context;
        context.displayIds = {1, 1};
        context.type = type;
        return context;
    }

    void Render() { m_renderer.Render(m_window.GetNativeWindow()); }

    void Move(int move)
    {
        ToolContext context = MakeContext(ToolEventType::MouseMove);
        context.x = 100 + move * 7 % (m_display.width / 2);
        context.y = 100 + move * 5 % (m_display.height / 2);
        m_tool.Update(context, m_renderer);
    }

    void Zoom(int step)
    {
        ToolContext context = MakeContext(ToolEventType::Key);
        context.key = static_cast<std::uint8_t>(step % 2 == 0 ? KeyCode::Equals : KeyCode::Minus);
        m_tool.Update(context, m_renderer);
    }

    const System::Device::Display::DisplayDescriptor& m_display;
    Window m_window;
    Graphics::Renderer::Renderer m_renderer;
    Graphics::Tools::SnipBenchProbe m_tool;
    int m_moves = 0;
};

void PrintCaptureTimes(const System::Device::Display::DisplayDescriptor& display, int runs)
{
    const System::Math::Rectangle region{display.x, display.y, display.x + display.width, display.y + display.height};
    CaptureContext context;
    Print("Initialize of a capture of the display", Measure(runs,
                                                            [&](int)
                                                            {
                                                                if (!context.Initialize(1, region))
                                                                    std::exit(EXIT_FAILURE);
                                                            }));
    std::vector<unsigned char> pixels(std::size_t{display.width} * display.height * 4);
    const auto callback = [&pixels](std::uint16_t, std::uint16_t, std::uint64_t) {
        return System::Types::Buffer<unsigned char>{pixels.data(), pixels.size()};
    };
    (void)context.Capture(callback);
    const double capture = Measure(runs, [&](int) { (void)context.Capture(callback); });
    Print("Capture of the display", capture);

    const std::vector<unsigned char> source(pixels.size(), 0x55);
    const double copy = Measure(runs, [&](int) { std::memcpy(pixels.data(), source.data(), pixels.size()); });
    Print("one copy of as many bytes in memory", copy);
    fmt::print("  {:<44} {:10.2f}\n", "ratio of the capture to that copy", capture / copy);
}

} // namespace

int main(int argc, char** argv)
{
    Orvik::Desktops::SetDesktop(Orvik::Desktops::ChooseDesktop().desktop);
    unsigned width = 0;
    unsigned height = 0;
    if (argc < 2 || std::sscanf(argv[1], "%ux%u", &width, &height) != 2)
    {
        std::fputs("usage: OperationTimings WIDTHxHEIGHT [RUNS]\n", stderr);
        return 2;
    }
    const int runs = argc > 2 ? std::max(std::atoi(argv[2]), 1) : 51;

    const Tests::VirtualDisplay display(width, height);
    setenv("DISPLAY", display.GetName().c_str(), 1);
    Tests::Screen screen(display.GetName());
    screen.ShowOnRoot(Tests::MakeTestPicture(screen.GetWidth(), screen.GetHeight()));
    const BenchmarkApplication application;
    fmt::print("Operations at {}x{}, median of {} runs, microseconds\n", width, height, runs);
    PrintCaptureTimes(application.GetDisplay(), runs);
    Overlay(application).PrintTimes(runs);
    return EXIT_SUCCESS;
}
