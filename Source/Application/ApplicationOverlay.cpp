// The part of the program that has a screen: the overlay, the tool on it, and the frame loop.
#include "Application/Application.h"

#include "Application/ReturnCodes.h"
#include "Application/SavedPathLabel.h"
#include "Application/SnipFiles.h"
#include "Core/System/Desktop/Cursor.h"
#include "Core/System/Desktop/DisplayCache.h"
#include "Core/System/Log/Log.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Core/System/Time/Trace.h"
#include "Core/System/Time/Wait.h"
#include "Desktops/Desktop.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <optional>
#include <utility>
#include <variant>

namespace Orvik::SnipBench
{
namespace
{

namespace Cursor = System::Device::Cursor;
namespace Log = System::Log;
using System::Desktop::Window;
using System::Desktop::WindowEvent;
using System::Desktop::WindowEventType;
using System::Device::Display::DisplayCache;
using System::Device::Display::DisplayDescriptor;
using System::Time::TraceScope;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;

constexpr const char* s_windowName = "Orvik::Snipping";
constexpr std::uint8_t s_leftButton = 1;

constexpr std::int64_t s_hintTime = 3'000'000'000; // nanoseconds

/// While a delay hides the window, other programs wait at most this long for its answer.
constexpr std::chrono::milliseconds s_answerPeriod{50};

} // namespace

std::string_view Application::RunOverlay(Graphics::Tools::SnipBench::Parameters parameters)
{
    if (!ChooseDisplay())
        return ReturnCodeName::InitializeSystemsFailed;
    if (const std::string_view failure = OpenWindow(); !failure.empty())
        return failure;
    const DisplayDescriptor& display = *GetSystem<DisplayCache>().GetDisplay(m_displayId);
    TraceScope step("surface");
    m_renderer.Resize(m_window->GetNativeWindow(), display.width, display.height);

    {
        step.Next("show");
        const Window::ScopedLock lock = m_window->Lock();
        m_window->Show(lock);
        m_window->SetClickThrough(false);
        step.End();
        m_tool.onResult = [this](Graphics::Tools::SnipBench::Result& result) { return OnResult(result); };
        m_tool.findDisplay = [this](std::uint16_t id)
        { return m_displaySystem != nullptr ? m_displaySystem->GetDisplay(id) : nullptr; };
        m_tool.onTakeBack = [this] { return TakeBack(); };
        if (m_delay != 0)
            WaitForDelay(lock);
        if (m_running)
            StartTool(std::move(parameters));
        RunFrameLoop();
        WarnOfLostTrace();
        step.Next("end of the overlay");
        m_renderer.Shutdown(m_window->GetNativeWindow());
        Cursor::ShowCursor(true);
    }
    // Only now, because the lock belongs to the window.
    m_window.reset();
    return ReturnCodeName::Success;
}

bool Application::CanCapture()
{
    const Desktops::Failure failure = Desktops::GetDesktop().CheckCapture();
    if (failure)
        Log::Write(Log::s_snipBench, Log::MessageTypeID::Error, *failure, ".");
    return !failure;
}

bool Application::ChooseDisplay()
{
    const TraceScope step("display choice");
    const DisplayCache& displays = GetSystem<DisplayCache>();
    if (m_settings->m_display)
        return ChooseDisplay(*m_settings->m_display, displays);
    m_displayId = displays.GetActiveDisplayId();
    if (m_displayId == System::Device::Display::InvalidDisplayId)
        m_displayId = displays.GetDefaultDisplayId();
    if (displays.GetDisplay(m_displayId) != nullptr)
        return true;
    Log::Write(Log::s_snipBench, Log::MessageTypeID::Error, "No valid display info for valid display id ", m_displayId,
               ".");
    return false;
}

bool Application::ChooseDisplay(const DisplayChoice& choice, const DisplayCache& displays)
{
    const std::string* const name = std::get_if<std::string>(&choice);
    const std::int64_t number = name == nullptr ? std::get<std::int64_t>(choice) : 0;
    const auto found =
        std::find_if(displays.GetDisplays().begin(), displays.GetDisplays().end(),
                     [name, number](const DisplayDescriptor& display)
                     { return name != nullptr ? std::string_view(display.name) == *name : display.id == number; });
    if (found != displays.GetDisplays().end())
    {
        m_displayId = found->id;
        return true;
    }
    if (name != nullptr)
        Log::Write(Log::s_snipBench, Log::MessageTypeID::Error, "No display is named '", *name, "'.");
    else
        Log::Write(Log::s_snipBench, Log::MessageTypeID::Error, "No valid display info for valid display id ", number,
                   ".");
    return false;
}

std::string_view Application::OpenWindow()
{
    // One pixel above the display and one pixel taller: the desktop would take an overlay of exactly the display's size
    // for a full-screen program.
    const DisplayDescriptor& display = *GetSystem<DisplayCache>().GetDisplay(m_displayId);
    m_window = std::make_unique<Window>(this, s_windowName, System::Math::Point{display.x, display.y - 1},
                                        System::Desktop::WindowSize{display.width, display.height + 1U},
                                        System::Desktop::WindowType::Overlay);
    TraceScope step("painter choice");
    Graphics::Renderer::PainterChoice painter = Graphics::Renderer::ChoosePainter();
    const bool isOpenGL = painter.kind == System::Desktop::SurfaceKind::OpenGL;
    Log::Write(Log::GetSnipBenchContext(), Log::MessageTypeID::Verbose, "The overlay is drawn by ",
               isOpenGL ? "OpenGL" : "the program itself", ": ", painter.reason, ".");
    m_window->SetSurfaceKind(painter.kind);
    m_renderer.SetPainter(std::move(painter));
    m_window->SetEventHandler([this](const WindowEvent& event) { return OnWindowEvent(event); });
    step.Next("window");
    if (!m_window->Create())
    {
        Log::Write(Log::s_snipBench, Log::MessageTypeID::Error, "Failed to create snipping window.");
        return ReturnCodeName::CreateWindowFailed;
    }
    step.Next("renderer");
    if (!m_renderer.Initialize(m_window->GetNativeWindow(), m_window->GetWindowClassName()))
    {
        Log::Write(Log::s_snipBench, Log::MessageTypeID::Error, "Failed to initialize renderer.");
        return ReturnCodeName::InitializeRendererFailed;
    }
    if (m_renderer.DrawsIntoMemory())
        m_window->SetTitle(fmt::format("SnipBench {}", VersionText));
    return {};
}

void Application::WaitForDelay(const Window::ScopedLock& lock)
{
    using Clock = std::chrono::steady_clock;
    const TraceScope step("delay");
    m_window->Hide(lock);
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(m_delay);
    while (m_running && Clock::now() < end)
    {
        {
            std::unique_lock delayLock(m_delayMutex);
            m_delayCondition.wait_until(delayLock, std::min(end, Clock::now() + s_answerPeriod),
                                        [this] { return !m_running; });
        }
        m_window->AnswerOthers();
    }
    if (m_running)
        m_window->Show(lock);
}

void Application::StartTool(Graphics::Tools::SnipBench::Parameters parameters)
{
    const TraceScope step("tool");
    ToolContext context = MakeToolContext();
    context.type = ToolEventType::MouseMove;
    System::Math::Point position;
    Cursor::GetCurrentPosition(position);
    context.x = position.x;
    context.y = position.y;
    m_tool.Start(context, std::move(parameters), m_renderer);
    m_tool.SetMode(m_settings->m_mode);
    if (const Graphics::Tools::ToolSwitches switches = MakeSwitches(); switches.hints)
        m_hints.Begin(MakeKeyHints(switches), s_hintTime, switches.contrast, m_renderer);
    Cursor::ShowCursor(false);
    m_window->BringToFront();
}

void Application::RunFrameLoop()
{
    m_hasStarted = true;
    m_textTime = System::Time::GetMonotonicNanoseconds();
    while (m_running)
    {
        const std::int64_t now = System::Time::GetMonotonicNanoseconds();
        m_window->Update();
        TickTexts();
        if (const std::int64_t wait = FinishFrame(now); wait != 0)
            m_window->WaitForMessage(wait, m_wake);
    }
}

// Input goes first, and a display shows at most one frame a period: OpenGL's swap waits for that by itself.
std::int64_t Application::FinishFrame(std::int64_t now)
{
    // The tool has removed its objects: a frame without them would show nothing.
    if (!m_running)
        return 0;
    const bool isInputWaiting = m_window->HasMessage();
    if (const std::int64_t early = m_lastFrame + GetRefreshPeriod() - now; early > 0)
    {
        if (isInputWaiting)
            return 0;
        if (m_renderer.DrawsIntoMemory())
            return System::Time::GetShorter(early, GetTextTime());
    }
    const TraceScope step(m_lastFrame == 0 ? "first frame" : nullptr);
    const bool isDrawn = m_renderer.Render(GetDrawnWindow());
    if (isDrawn)
        m_lastFrame = now;
    return isDrawn || isInputWaiting ? 0 : GetTextTime();
}

std::int64_t Application::GetRefreshPeriod() const
{
    constexpr std::int64_t second = 1'000'000'000;
    constexpr std::uint16_t usualRate = 60;
    // Virtual and remote displays have none, and Windows reports 1 where a display doesn't say.
    constexpr std::uint16_t leastRate = 24;
    const DisplayDescriptor* const display = GetSystem<DisplayCache>().GetDisplay(m_displayId);
    const std::uint16_t rate = display != nullptr ? display->refreshRate : 0;
    return second / (rate >= leastRate ? rate : usualRate);
}

// The handle stays as it was after the window is closed, and the system may give its number to another window.
System::Desktop::NativeWindow Application::GetDrawnWindow() const
{
    const bool isClosed = m_window->GetState() == System::Desktop::WindowState::Closed;
    return isClosed ? System::Desktop::NativeWindow::None : m_window->GetNativeWindow();
}

ToolContext Application::MakeToolContext() const
{
    ToolContext context;
    context.displayIds = {m_displayId, m_displayId};
    return context;
}

bool Application::OnWindowEvent(const WindowEvent& event)
{
    ToolContext context = MakeToolContext();
    switch (event.type)
    {
    case WindowEventType::Key:
        context.type = ToolEventType::Key;
        context.pressed = event.data.key.pressed != 0;
        context.key = static_cast<std::uint8_t>(event.data.key.key);
        if (event.data.key.key == System::Desktop::KeyCode::F1)
            m_hints.SetHeld(context.pressed, m_renderer);
        m_tool.Update(context, m_renderer);
        if (!context.pressed && event.data.key.key == System::Desktop::KeyCode::Escape)
        {
            m_tool.End(m_renderer);
            m_running = false;
        }
        return true;
    case WindowEventType::MouseMove:
    {
        // In screen pixels; the event's own position is in window pixels. If the desktop doesn't report the position,
        // the crosshair stays: zeros would move it to the corner.
        System::Math::Point position;
        if (!Cursor::GetCurrentPosition(position))
            return true;
        context.type = ToolEventType::MouseMove;
        context.x = position.x;
        context.y = position.y;
        m_tool.Update(context, m_renderer);
        return true;
    }
    case WindowEventType::MouseWheel:
        context.type = ToolEventType::MouseWheel;
        context.wheelDelta = event.data.wheelDelta;
        m_tool.Update(context, m_renderer);
        return true;
    case WindowEventType::MouseButton:
        context.type = ToolEventType::MouseButton;
        context.pressed = event.data.mouseButton.pressed != 0;
        context.leftButton = event.data.mouseButton.button == s_leftButton;
        m_tool.Update(context, m_renderer);
        return true;
    case WindowEventType::Created:
    case WindowEventType::DevicesChanged:
    case WindowEventType::DisplayChanged:
    case WindowEventType::HotKey:
    case WindowEventType::Moved:
        return false;
    case WindowEventType::Resized:
    case WindowEventType::Paint:
        // What the window showed is lost.
        m_renderer.Invalidate();
        return false;
    }
    return false;
}

bool Application::OnResult(Graphics::Tools::SnipBench::Result& result)
{
    const SnipFileSettings settings = MakeFileSettings();
    if (m_annotate)
        result.isKept = SaveAnnotation(result, settings);
    else
        result.isKept = SaveAndRemember(result, settings);
    // It is never set again: the run may have been asked to end in the meantime.
    if (m_oneShot)
        m_running = false;
    return !m_oneShot;
}

// A run of ten thousand selections that can't be taken back takes no more memory than one of ten.
bool Application::SaveAndRemember(Graphics::Tools::SnipBench::Result& result, const SnipFileSettings& settings)
{
    std::optional<SnipPaths> paths = SaveSnip(result, settings);
    if (paths && m_settings->m_switches.undo)
        m_snips.push_back(std::move(*paths));
    return paths.has_value();
}

bool Application::TakeBack()
{
    const SnipFileSettings settings = MakeFileSettings();
    if (m_annotate)
        return TakeAnnotationBack(settings);
    if (m_snips.empty())
        return false;
    TakeSnipBack(m_snips.back(), settings);
    m_snips.pop_back();
    return true;
}

SnipFileSettings Application::MakeFileSettings()
{
    SnipFileSettings settings{m_outputDirectory, m_fileFormat.data(), m_keepMask, nullptr};
    if (m_window == nullptr)
        return settings;
    settings.showText = [this](const std::string& text) { ShowMessage(text); };
    return settings;
}

// The time before it doesn't count: the loop may have waited for long, and saving takes its time.
void Application::ShowMessage(const std::string& text)
{
    TickTexts();
    if (m_settings->m_switches.contrast)
        ShowSavedPath(text, m_savedPathLabel, m_savedPathEdge, m_renderer);
    else
        ShowSavedPath(text, m_savedPathLabel, m_renderer);
}

void Application::TickTexts()
{
    const std::int64_t now = System::Time::GetMonotonicNanoseconds();
    const std::int64_t elapsed = now - std::exchange(m_textTime, now);
    if (m_savedPathLabel.Tick(elapsed, m_renderer))
        m_savedPathEdge.Hide(m_renderer.GetTextRenderer());
    m_hints.Tick(elapsed, m_renderer);
}

std::int64_t Application::GetTextTime() const
{
    return System::Time::GetShorter(m_savedPathLabel.GetRemaining(), m_hints.GetRemaining());
}

// Only annotations have labels.
Graphics::Tools::ToolSwitches Application::MakeSwitches() const
{
    Graphics::Tools::ToolSwitches switches = m_settings->m_switches;
    if (!m_annotate)
        switches.labels.clear();
    return switches;
}

} // namespace Orvik::SnipBench
