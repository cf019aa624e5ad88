#include "Tests/Support/Desktop/NestedCompositor.h"

#include "Tests/Support/Desktop/BlankPointer.h"
#include "Tests/Support/Desktop/InputDriver.h"
#include "Tests/Support/Desktop/OutputWindows.h"
#include "Tests/Support/Desktop/Screen.h"
#include "Tests/Support/Desktop/SwayCommand.h"
#include "Tests/Support/Desktop/WaitForSocket.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <pwd.h>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <unistd.h>
#include <utility>

namespace Orvik::Tests
{
namespace
{

/// The socket's name, the same for all.
constexpr const char* s_socket = "wayland-1";

/// Far above what anything here takes, on a busy machine too.
constexpr std::chrono::seconds s_limit(60);

/// What of GNOME's screen its bar takes, at most.
constexpr int s_barHeight = 40;

constexpr std::array<std::pair<std::string_view, CompositorKind>, 6> s_kinds = {
    {{"sway", CompositorKind::Sway},
     {"sway-headless", CompositorKind::HeadlessSway},
     {"kwin", CompositorKind::KWin},
     {"kwin-virtual", CompositorKind::VirtualKWin},
     {"gnome", CompositorKind::Gnome},
     {"weston", CompositorKind::Weston}}};

std::vector<std::string> ListPrograms(CompositorKind kind)
{
    switch (kind)
    {
    case CompositorKind::Sway:
        return {"Xvfb", "sway", "swaybg"};
    case CompositorKind::HeadlessSway:
        return {"sway", "swaybg"};
    case CompositorKind::KWin:
        return {"Xvfb", "dbus-daemon", "kwin_wayland", "swaybg"};
    case CompositorKind::VirtualKWin:
        return {"dbus-daemon", "kwin_wayland", "swaybg"};
    case CompositorKind::Gnome:
        return {"Xvfb", "dbus-daemon", "gnome-shell", "gsettings"};
    case CompositorKind::Weston:
        return {"Xvfb", "weston"};
    }
    return {};
}

std::string GetPath()
{
    const char* const path = std::getenv("PATH");
    return path != nullptr ? path : "/usr/bin:/bin";
}

/// Empty if the program isn't there.
std::filesystem::path FindProgram(const std::string& name)
{
    std::istringstream folders(GetPath());
    for (std::string folder; std::getline(folders, folder, ':');)
        if (access((folder + "/" + name).c_str(), X_OK) == 0)
            return std::filesystem::path(folder) / name;
    return {};
}

std::optional<UserNumbers> FindUser()
{
    if (geteuid() != 0)
        return std::nullopt;
    const passwd* const nobody = getpwnam("nobody");
    if (nobody == nullptr)
        throw std::runtime_error("There is no user 'nobody'.");
    return UserNumbers{nobody->pw_uid, nobody->pw_gid};
}

/// Whether the tests are to run on others alone.
bool IsLeftOut(CompositorKind kind)
{
    const char* const list = std::getenv("ORVIK_TEST_COMPOSITORS");
    if (list == nullptr)
        return false;
    std::istringstream names(list);
    for (std::string name; std::getline(names, name, ',');)
        if (FindCompositorKind(name) == kind)
            return false;
    return true;
}

/// Whether the screen shows the picture from that row on.
bool Shows(const Screen& screen, const Picture& picture, int firstRow)
{
    const Area area = {0, firstRow, picture.width, picture.height - firstRow};
    return screen.Capture(area) == picture.Crop(area);
}

} // namespace

/// How a compositor is started.
struct NestedCompositor::Launch
{
    std::filesystem::path program;
    std::vector<std::string> arguments;
    std::vector<std::string> environment;
};

std::optional<CompositorKind> FindCompositorKind(std::string_view name)
{
    for (const auto& [known, kind] : s_kinds)
        if (known == name)
            return kind;
    return std::nullopt;
}

std::optional<std::string> FindReasonToSkip(CompositorKind kind)
{
    if (IsLeftOut(kind))
        return "ORVIK_TEST_COMPOSITORS leaves it out.";
    for (const std::string& program : ListPrograms(kind))
        if (FindProgram(program).empty())
            return program + " isn't installed.";
    return std::nullopt;
}

NestedCompositor::NestedCompositor(const CompositorOptions& options) : m_options(options), m_user(FindUser())
{
    MakeDirectories();
    if (options.kind != CompositorKind::HeadlessSway && options.kind != CompositorKind::VirtualKWin)
        m_display.emplace(static_cast<std::uint32_t>(options.width), static_cast<std::uint32_t>(options.height), 24);
    m_environment["WAYLAND_DISPLAY"] = (GetRuntime() / s_socket).string();
    m_environment["XDG_RUNTIME_DIR"] = GetRuntime().string();
    m_environment["XDG_SESSION_TYPE"] = "wayland";
    StartBuses();
    if (!m_options.windows.empty())
        NameClosing(GetDisplayName());
    StartCompositor();
}

NestedCompositor::~NestedCompositor() = default;

std::string NestedCompositor::GetDisplayName() const
{
    if (m_display)
        return m_display->GetName();
    return m_options.kind == CompositorKind::HeadlessSway ? m_environment.at("WAYLAND_DISPLAY") : std::string();
}

void NestedCompositor::MakeDirectories()
{
    namespace fs = std::filesystem;
    fs::permissions(m_directory.GetPath(), static_cast<fs::perms>(0755));
    for (const char* name : {"run", "home"})
    {
        const fs::path folder = m_directory.GetPath() / name;
        fs::create_directory(folder);
        fs::permissions(folder, fs::perms::owner_all);
        if (m_user && chown(folder.c_str(), m_user->user, m_user->group) != 0)
            throw std::runtime_error("The folder can't be given away: " + folder.string());
    }
}

std::vector<std::string> NestedCompositor::MakeEnvironment(const std::vector<std::string>& more) const
{
    std::vector<std::string> all = {"PATH=" + GetPath(), "HOME=" + (m_directory.GetPath() / "home").string(),
                                    "LANG=C.UTF-8", "LIBGL_ALWAYS_SOFTWARE=1"};
    for (const auto& [name, value] : m_environment)
        if (name != "WAYLAND_DISPLAY")
            all.push_back(name + "=" + value);
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

void NestedCompositor::StartBuses()
{
    const bool isGnome = m_options.kind == CompositorKind::Gnome;
    if (!isGnome && m_options.kind != CompositorKind::KWin && m_options.kind != CompositorKind::VirtualKWin)
        return;
    m_environment["XDG_CURRENT_DESKTOP"] = isGnome ? "GNOME" : "KDE";
    m_systemBus.emplace(GetRuntime(), "system-bus", MakeEnvironment(), m_user, BusServices::None);
    m_environment["DBUS_SYSTEM_BUS_ADDRESS"] = m_systemBus->GetAddress();
    // A portal that this machine has for another desktop would ask a person whether to take a picture.
    const bool isWithoutPortal = m_options.kind == CompositorKind::VirtualKWin;
    m_sessionBus.emplace(GetRuntime(), "session-bus",
                         MakeEnvironment({"WAYLAND_DISPLAY=" + m_environment["WAYLAND_DISPLAY"]}), m_user,
                         isWithoutPortal ? BusServices::None : BusServices::Installed);
    m_environment["DBUS_SESSION_BUS_ADDRESS"] = m_sessionBus->GetAddress();
}

NestedCompositor::Launch NestedCompositor::MakeSwayLaunch() const
{
    const bool isHeadless = m_options.kind == CompositorKind::HeadlessSway;
    const std::string backend = isHeadless ? "headless" : "x11";
    std::vector<Area> windows = m_options.windows;
    if (windows.empty())
        windows.push_back({0, 0, m_options.width, m_options.height});
    const std::filesystem::path path = m_directory.GetPath() / "sway";
    std::ofstream configuration(path);
    configuration << "xwayland disable\ndefault_border none\n";
    for (std::size_t index = 0; index < windows.size(); ++index)
        configuration << "output " << (isHeadless ? "HEADLESS-" : "X11-") << index + 1 << " resolution "
                      << windows[index].width << "x" << windows[index].height << " position 0,0\n";
    if (isHeadless)
    {
        WriteBlankPointer(m_directory.GetPath() / "pointers", "blank");
        configuration << "seat * xcursor_theme blank\n";
    }
    configuration << m_options.configuration << "\n";
    std::vector<std::string> environment = {"WLR_BACKENDS=" + backend,
                                            "WLR_X11_OUTPUTS=" + std::to_string(windows.size()), "WLR_RENDERER=pixman",
                                            "WLR_LIBINPUT_NO_DEVICES=1"};
    if (isHeadless)
        environment.push_back("XCURSOR_PATH=" + (m_directory.GetPath() / "pointers").string());
    else
        environment.push_back("DISPLAY=" + GetDisplayName());
    return {"sway", {"-c", path.string()}, MakeEnvironment(environment)};
}

void NestedCompositor::PlaceOutputs()
{
    if (!m_options.windows.empty())
        WaitFor([this] { return PlaceOutputWindows(GetDisplayName(), m_options.windows); }, [](int /*attempt*/) {});
}

void NestedCompositor::Unplug(std::size_t index) const
{
    CloseOutputWindow(GetDisplayName(), index);
}

bool NestedCompositor::Command(const std::string& command) const
{
    return CommandSway(GetRuntime(), command);
}

// Its file has a capability, and where a container has taken that from all, the system doesn't start it. A copy has
// none.
std::filesystem::path NestedCompositor::CopyKWin() const
{
    const std::filesystem::path copy = m_directory.GetPath() / "kwin_wayland";
    std::filesystem::copy_file(FindProgram("kwin_wayland"), copy);
    return copy;
}

NestedCompositor::Launch NestedCompositor::MakeLaunch() const
{
    const std::string width = std::to_string(m_options.width);
    const std::string height = std::to_string(m_options.height);
    const std::string display = "DISPLAY=" + GetDisplayName();
    switch (m_options.kind)
    {
    case CompositorKind::Sway:
    case CompositorKind::HeadlessSway:
        return MakeSwayLaunch();
    case CompositorKind::KWin:
        return {CopyKWin(),
                {"--x11-display", GetDisplayName(), "--width", width, "--height", height, "--socket", s_socket,
                 "--no-lockscreen"},
                MakeEnvironment({display})};
    case CompositorKind::VirtualKWin:
        return {CopyKWin(),
                {"--virtual", "--width", width, "--height", height, "--socket", s_socket, "--no-lockscreen"},
                MakeEnvironment()};
    case CompositorKind::Gnome:
        return {"gnome-shell",
                {"--nested", "--wayland", "--no-x11", "--wayland-display", s_socket},
                MakeEnvironment({display, "MUTTER_DEBUG_DUMMY_MODE_SPECS=" + width + "x" + height})};
    case CompositorKind::Weston:
        return {
            "weston",
            {"--backend=x11-backend.so", "--width=" + width, "--height=" + height, std::string("--socket=") + s_socket},
            MakeEnvironment({display})};
    }
    throw std::runtime_error("There is no such compositor.");
}

void NestedCompositor::StartCompositor()
{
    if (m_options.kind == CompositorKind::Gnome)
        Configure({{"org.gnome.desktop.interface", "enable-animations", "false"},
                   {"org.gnome.desktop.interface", "enable-hot-corners", "false"},
                   {"org.gnome.desktop.background", "picture-options", "stretched"},
                   {"org.gnome.desktop.notifications", "show-banners", "false"},
                   {"org.gnome.desktop.lockdown", "disable-lock-screen", "true"}});
    const Launch launch = MakeLaunch();
    // The log stands in a folder of this process's user.
    std::ofstream(m_directory.GetPath() / "log").close();
    m_compositor.emplace(
        ChildOptions{launch.program, launch.arguments, launch.environment, m_directory.GetPath() / "home"},
        m_directory.GetPath() / "log", m_user);
    if (!WaitForSocket(GetRuntime() / s_socket, *m_compositor))
        throw std::runtime_error("The compositor doesn't come up.\n" + ReadLog());
    PlaceOutputs();
}

void NestedCompositor::SetGround(const std::filesystem::path& file)
{
    if (m_options.kind != CompositorKind::Gnome)
    {
        m_ground.reset(); // the next would lie below it
        m_ground = std::make_unique<ProcessFamily>(
            ChildOptions{"swaybg",
                         {"-i", file.string(), "-m", "stretch"},
                         MakeEnvironment({"WAYLAND_DISPLAY=" + m_environment["WAYLAND_DISPLAY"]}),
                         "/"},
            m_directory.GetPath() / "log", m_user);
        return;
    }
    const std::string uri = "'file://" + file.string() + "'";
    Configure({{"org.gnome.desktop.background", "picture-uri", uri},
               {"org.gnome.desktop.background", "picture-uri-dark", uri}});
}

void NestedCompositor::Configure(const std::vector<std::array<std::string, 3>>& settings) const
{
    std::string script;
    for (const auto& [schema, key, value] : settings)
        script += "gsettings set " + schema + " " + key + " " + value + ";";
    RunScript(script);
}

void NestedCompositor::AnswerPortal(const std::string& answer) const
{
    RunScript("gdbus call --session --dest org.freedesktop.impl.portal.PermissionStore"
              " --object-path /org/freedesktop/impl/portal/PermissionStore"
              " --method org.freedesktop.impl.portal.PermissionStore.SetPermission"
              " screenshot true screenshot '' \"['" +
              answer + "']\"");
}

void NestedCompositor::RunScript(const std::string& script) const
{
    ProcessFamily family(ChildOptions{"sh", {"-c", script}, MakeEnvironment(), "/"}, m_directory.GetPath() / "log",
                         m_user);
    const auto end = std::chrono::steady_clock::now() + s_limit;
    while (family.IsRunning() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

Picture NestedCompositor::ShowGround(const Picture& picture)
{
    const std::filesystem::path file = m_directory.GetPath() / ("ground" + std::to_string(++m_groundCount) + ".png");
    SavePng(picture, file);
    std::filesystem::permissions(file, static_cast<std::filesystem::perms>(0644));
    m_shown = picture;
    if (GetDisplayName().empty())
    {
        SetGround(file);
        return m_shown;
    }
    const Screen screen(GetDisplayName());
    if (m_options.configuration.empty())
    {
        SetGround(file);
        WaitForGround(screen, picture);
        return m_shown;
    }
    m_ground.reset();
    WaitForGround(screen, false);
    SetGround(file);
    WaitForGround(screen, true);
    return m_shown;
}

void NestedCompositor::WaitForGround(const Screen& screen, const Picture& picture)
{
    if (m_options.kind == CompositorKind::Gnome)
    {
        WaitForGnomesGround(screen, picture);
        return;
    }
    WaitFor([&] { return Shows(screen, picture, 0); }, [](int /*attempt*/) {});
    m_shown = screen.CaptureAll();
}

void NestedCompositor::WaitForGnomesGround(const Screen& screen, const Picture& picture)
{
    InputDriver input(GetDisplayName());
    input.MoveTo({picture.width / 4, s_barHeight / 4}); // it draws the pointer, too: into its bar
    WaitFor([&] { return Shows(screen, picture, s_barHeight); },
            [&input](int attempt)
            {
                // It starts with an overview, and is deaf for a while before.
                if (attempt % 50 == 49)
                    input.TapKey("Escape");
            });
    m_shown = screen.CaptureAll();
    TakePointerOutOfBar(screen, input);
}

// Of each half of the bar there is a picture without it.
void NestedCompositor::TakePointerOutOfBar(const Screen& screen, InputDriver& input)
{
    const int middle = m_shown.width / 2;
    input.MoveTo({middle + middle / 2, s_barHeight / 4});
    Picture last = m_shown;
    Picture now = screen.CaptureAll();
    WaitFor(
        [&]
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            last = std::exchange(now, screen.CaptureAll());
            return now == last && now != m_shown;
        },
        [](int /*attempt*/) {});
    for (int y = 0; y < s_barHeight; ++y)
        for (int x = 0; x < middle; ++x)
            m_shown.pixels[static_cast<std::size_t>(y * m_shown.width + x)] = now.At(x, y);
    input.MoveTo({middle, m_shown.height / 2}); // where cases begin
}

void NestedCompositor::WaitForGround(const Screen& screen, bool isThere)
{
    Picture last;
    WaitFor(
        [&]
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            const std::vector<std::uint32_t>& pixels = m_shown.pixels;
            last = std::exchange(m_shown, screen.CaptureAll());
            const bool isPlain = std::all_of(pixels.begin(), pixels.end(),
                                             [&pixels](std::uint32_t pixel) { return pixel == pixels.front(); });
            return isPlain != isThere && m_shown == last;
        },
        [](int /*attempt*/) {});
}

void NestedCompositor::WaitFor(const std::function<bool()>& condition, const std::function<void(int attempt)>& help)
{
    const auto end = std::chrono::steady_clock::now() + s_limit;
    for (int attempt = 0; !condition(); ++attempt)
    {
        if (std::chrono::steady_clock::now() > end || !IsRunning())
            throw std::runtime_error("The compositor doesn't show what it shall.\n" + ReadLog());
        help(attempt);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

void NestedCompositor::AddDesktopEntry(const std::string& name, const std::string& text) const
{
    const std::filesystem::path folder = m_directory.GetPath() / "home" / ".local" / "share" / "applications";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / name) << text;
}

std::string NestedCompositor::ReadLog() const
{
    std::ifstream file(m_directory.GetPath() / "log");
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace Orvik::Tests
