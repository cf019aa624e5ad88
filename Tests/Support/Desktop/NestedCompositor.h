#pragma once

#include "Tests/Support/Desktop/Picture.h"
#include "Tests/Support/Desktop/PrivateBus.h"
#include "Tests/Support/Desktop/ProcessFamily.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/VirtualDisplay.h"

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvik::Tests
{

class InputDriver;
class Screen;

enum class CompositorKind
{
    Sway,
    HeadlessSway, ///< without an X server below: virtual devices work it, and it gives copies of its screen
    KWin,
    VirtualKWin, ///< the same without an X server below; it draws by OpenGL, which no virtual X server gives the other
    Gnome,
    Weston,
};

/// "sway", "sway-headless", "kwin", "kwin-virtual", "gnome", "weston"; nothing for another name.
[[nodiscard]] std::optional<CompositorKind> FindCompositorKind(std::string_view name);

/// Why tests on such a compositor are skipped, as a sentence: a program isn't installed, or the environment variable
/// ORVIK_TEST_COMPOSITORS, a list of kinds with commas, leaves it out. Nothing if they run.
[[nodiscard]] std::optional<std::string> FindReasonToSkip(CompositorKind kind);

struct CompositorOptions
{
    CompositorKind kind = CompositorKind::Sway;
    int width = 1280; ///< physical pixels
    int height = 720;
    /// Lines for sway's configuration after the usual ones; the others take none.
    std::string configuration;
    /// Of sway on an X server: where on its screen the windows of its outputs are, X11-1 and so on. They cover
    /// it. None stands for one output as large as the screen.
    std::vector<Area> windows = {};
};

/// A Wayland compositor in a private X server that no screen or graphics card belongs to, with a home, a runtime
/// directory and buses of its own. It is worked and looked at from outside, by that X server, or else by its own
/// protocols. A compositor that is
/// started by root runs as the user "nobody", for it refuses root; its clients may be root's. All of it ends with the
/// object, or when this process does.
class NestedCompositor
{
public:
    /// Throws `std::runtime_error`, with what the compositor has to say, if it doesn't come up within a minute.
    explicit NestedCompositor(const CompositorOptions& options);
    ~NestedCompositor();
    NestedCompositor(const NestedCompositor&) = delete;
    NestedCompositor& operator=(const NestedCompositor&) = delete;

    [[nodiscard]] CompositorKind GetKind() const { return m_options.kind; }
    /// What to work it and look at it by: the name of the X server, or the path of a headless sway's socket. Empty for
    /// a virtual KWin.
    [[nodiscard]] std::string GetDisplayName() const;
    /// What a client's environment needs beside its own, by name: it finds the compositor and the session's bus.
    [[nodiscard]] const std::map<std::string, std::string>& GetEnvironment() const { return m_environment; }
    /// Whom the compositor runs as; nothing where that is this process's user.
    [[nodiscard]] std::optional<UserNumbers> GetUser() const { return m_user; }
    /// The session's folders: "run" and "home".
    [[nodiscard]] const std::filesystem::path& GetDirectory() const { return m_directory.GetPath(); }
    [[nodiscard]] bool IsRunning() { return m_compositor->IsRunning(); }

    /// Has sway carry a command out. False if it refuses.
    [[nodiscard]] bool Command(const std::string& command) const;

    /// Takes away the output whose window has that place among the options' windows.
    void Unplug(std::size_t index) const;

    /// Adds an application's desktop entry, a file of that name, to those that the session's user has.
    void AddDesktopEntry(const std::string& name, const std::string& text) const;

    /// Keeps an answer to the question of the session's portal whether programs may take pictures: "yes" or "no".
    void AnswerPortal(const std::string& answer) const;

    /// Makes a picture of the output's size the desktop's, below all windows, and returns once it is on the screen, or
    /// throws `std::runtime_error` after a minute. Returns what the whole screen shows then: GNOME has a bar above it.
    /// Where sway's configuration scales or turns what it shows, the picture isn't known, but that it is another one.
    /// Not for Weston. The screen of a virtual KWin isn't looked at, nor waited for.
    Picture ShowGround(const Picture& picture);
    /// What the screen has shown then; empty before.
    [[nodiscard]] const Picture& GetShown() const { return m_shown; }

private:
    struct Launch;

    void MakeDirectories();
    void StartBuses();
    void StartCompositor();
    void PlaceOutputs();
    void SetGround(const std::filesystem::path& file);
    void WaitForGround(const Screen& screen, const Picture& picture);
    void WaitForGnomesGround(const Screen& screen, const Picture& picture);
    void TakePointerOutOfBar(const Screen& screen, InputDriver& input);
    /// The same where it isn't known how the picture is shown: whether there is any.
    void WaitForGround(const Screen& screen, bool isThere);
    /// Waits for a minute at most. `help` is called after each look that finds the condition false.
    void WaitFor(const std::function<bool()>& condition, const std::function<void(int attempt)>& help);
    /// Sets GNOME's settings: of each a schema, a key and a value, as a shell takes them.
    void Configure(const std::vector<std::array<std::string, 3>>& settings) const;
    /// Runs a shell's script in the session to its end.
    void RunScript(const std::string& script) const;
    [[nodiscard]] std::filesystem::path GetRuntime() const { return m_directory.GetPath() / "run"; }
    /// What the compositor and its helpers are started with, NAME=value.
    [[nodiscard]] std::vector<std::string> MakeEnvironment(const std::vector<std::string>& more = {}) const;
    [[nodiscard]] Launch MakeLaunch() const;
    [[nodiscard]] Launch MakeSwayLaunch() const;
    [[nodiscard]] std::filesystem::path CopyKWin() const;
    [[nodiscard]] std::string ReadLog() const;

    CompositorOptions m_options;
    std::optional<UserNumbers> m_user;
    TemporaryDirectory m_directory;
    std::map<std::string, std::string> m_environment;
    std::optional<VirtualDisplay> m_display;
    std::optional<PrivateBus> m_systemBus; ///< in place of the system's
    std::optional<PrivateBus> m_sessionBus;
    std::optional<ProcessFamily> m_compositor;
    std::unique_ptr<ProcessFamily> m_ground; ///< the client that shows the picture
    int m_groundCount = 0;
    Picture m_shown;
};

} // namespace Orvik::Tests
