#pragma once

#include "Application/KeyHints.h"
#include "Application/SnipBenchConfig.h"
#include "Application/SnipFiles.h"
#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Tools/SnipBench.h"
#include "Core/Graphics/Tools/TimedLabel.h"
#include "Core/System/Desktop/Window.h"
#include "Core/System/Runtime/Application.h"
#include "Core/System/Threads/WakeSignal.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace Orvik::SnipBench
{

/// The version text of the program.
inline constexpr std::string_view VersionText = "0.3.0.2";

/// The program: reads the options, covers a display with the overlay, runs the tool until the user is done, and reports
/// how it ended.
class Application final : public System::Runtime::Application
{
public:
    Application();
    ~Application() override;

    void Main(const System::Runtime::ApplicationParameters& parameters) override;
    /// Writes the start banner once the `Logger` is up.
    void OnPostSystemInitialization(System::Runtime::Application& sender,
                                    PostSystemInitializationEvent& event) override;
    /// Ends the frame loop, and a delay that is still waiting. From any thread.
    void OnShutdownRequested() override;
    /// Answers the caller and ends the process.
    void OnDisplayLost() override;

private:
    using FileFormat = std::array<char, 4>; ///< three characters and a terminator

    /// Runs the program and returns the name of the return code; empty if none is to be set.
    [[nodiscard]] std::string_view RunSteps(const System::Runtime::ApplicationParameters& parameters);
    /// The same from the point at which the Systems are up. Without a picture a display's is taken.
    [[nodiscard]] std::string_view RunOnPicture(Graphics::Tools::SnipBench::Parameters parameters);
    /// Sets the exit code by its name and prints its JSON object.
    void SetReturnCode(std::string_view name);
    /// Whether the run may go on. `kind` is the system's number of a permission; no desktop here asks for one.
    [[nodiscard]] static bool RequestPermission(std::uint16_t kind);

    void ReadOptions(const System::Runtime::CommandLine& commandLine);
    void LoadConfiguration(const System::Runtime::CommandLine& commandLine);
    void WarnOfIgnoredConfiguration();
    static void WarnOfLostTrace();
    void PrepareOutputDirectory();
    [[nodiscard]] std::string_view RunOverlay(Graphics::Tools::SnipBench::Parameters parameters);
    [[nodiscard]] bool CanCapture();
    [[nodiscard]] bool ChooseDisplay();
    [[nodiscard]] bool ChooseDisplay(const DisplayChoice& choice,
                                     const System::Device::Display::DisplayCache& displays);
    [[nodiscard]] std::string_view OpenWindow();
    void WaitForDelay(const System::Desktop::Window::ScopedLock& lock);
    void StartTool(Graphics::Tools::SnipBench::Parameters parameters);
    void RunFrameLoop();
    /// Draws the frame if it is due. Returns for how many nanoseconds there is nothing to do unless something comes in;
    /// less than 0 means without a limit. `now` is the clock's time in nanoseconds.
    [[nodiscard]] std::int64_t FinishFrame(std::int64_t now);
    /// Nanoseconds from one picture of the display to the next.
    [[nodiscard]] std::int64_t GetRefreshPeriod() const;
    /// The window that frames are drawn on; none once the system has closed it.
    [[nodiscard]] System::Desktop::NativeWindow GetDrawnWindow() const;

    [[nodiscard]] System::Tools::ToolContext MakeToolContext() const;
    bool OnWindowEvent(const System::Desktop::WindowEvent& event);
    bool OnResult(Graphics::Tools::SnipBench::Result& result);
    /// False if the files can't be saved.
    bool SaveAndRemember(Graphics::Tools::SnipBench::Result& result, const SnipFileSettings& settings);
    /// Takes the last selection back. False if there is none.
    bool TakeBack();
    /// Shows a text about files for a second.
    void ShowMessage(const std::string& text);
    /// Moves the time of texts that disappear by themselves on to now.
    void TickTexts();
    /// When the first of them disappears, in nanoseconds from now; less than 0 if there is none.
    [[nodiscard]] std::int64_t GetTextTime() const;
    /// How files are written. Paths are shown if there is an overlay.
    [[nodiscard]] SnipFileSettings MakeFileSettings();
    [[nodiscard]] Graphics::Tools::ToolSwitches MakeSwitches() const;

    // ApplicationRegion.cpp: a selection that the configuration has made.
    [[nodiscard]] std::string_view RunRegion(System::Multimedia::Bitmap picture);
    /// Waits for the option's time, or until the run is asked to end.
    void WaitBeforeCapture();
    [[nodiscard]] bool DeliverRegion(System::Multimedia::Bitmap& picture);

    std::atomic<bool> m_running = true;
    bool m_oneShot = false;
    bool m_keepMask = false;
    bool m_annotate = false;
    std::int32_t m_delay = 0; ///< milliseconds
    FileFormat m_fileFormat = {"png"};
    std::filesystem::path m_outputDirectory;
    std::filesystem::path m_inputFile;
    std::uint16_t m_displayId = System::Device::Display::InvalidDisplayId;
    std::unique_ptr<System::Desktop::Window> m_window;
    Graphics::Renderer::Renderer m_renderer;
    Graphics::Tools::TimedLabel m_savedPathLabel;
    Graphics::Tools::TextEdge m_savedPathEdge;
    KeyHints m_hints;
    Graphics::Tools::SnipBench m_tool;
    bool m_hasStarted = false;                   ///< the frame loop has begun
    bool m_hasIgnoredConfiguration = false;      ///< a configuration was given and couldn't be used
    const SnipBenchConfig* m_settings = nullptr; ///< what the configuration says; the configuration cache's
    std::vector<SnipPaths> m_snips;              ///< what was saved and can be taken back, oldest first
    std::int64_t m_lastFrame = 0;                ///< when the last frame was drawn, nanoseconds of the monotonic clock
    std::int64_t m_textTime = 0;                 ///< until when the time of texts has been counted, the same
    System::Threads::WakeSignal m_wake;          ///< ends a wait when the run is asked to end
    std::mutex m_delayMutex;
    std::condition_variable m_delayCondition; ///< ends a delay when the run is asked to end
};

} // namespace Orvik::SnipBench
