// An X server that says anything, to all that listens to one.
#include "Core/System/Desktop/PixelSurface.h"
#include "Core/System/Desktop/PointerEvent.h"
#include "Core/System/Desktop/Window.h"
#include "Desktops/X11/EventData.h"
#include "Desktops/X11/PointerInput.h"
#include "Desktops/X11/X11Desktop.h"
#include "Desktops/X11/XConnection.h"
#include "Tests/Fuzz/HostileServer.h"
#include "Tests/Support/NullDesktop.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Orvik::Fuzz
{
namespace
{

using Desktops::X11::GetXDisplay;
using Desktops::X11::X11Desktop;
using System::Desktop::WindowEvent;
using System::Desktop::WindowEventType;
using System::Desktop::WindowState;

constexpr System::Math::Rectangle s_region = {0, 0, s_screenWidth, s_screenHeight};

/// Whether it is handled.
bool HearEvent(const WindowEvent& event)
{
    if (event.type == WindowEventType::MouseWheel)
        Require(std::isfinite(event.data.wheelDelta), "a wheel turns by a number");
    return false;
}

bool DrawFrame(Desktops::PixelMemory& memory)
{
    if (!memory.BeginFrame())
        return false;
    std::fill_n(memory.GetPixels(), memory.GetStride() * s_screenHeight, 0xFF112233U);
    const std::array<System::Math::Rectangle, 1> areas = {s_region};
    memory.Present(areas);
    memory.EndFrame();
    return true;
}

/// Whether it comes to a picture.
bool Capture(X11Desktop& desktop)
{
    const std::unique_ptr<Desktops::PlatformCaptureContext> capture = desktop.MakeCaptureContext();
    if (!capture->Initialize(s_region))
        return false;
    constexpr int pictures = 2;
    bool hasPicture = false;
    for (int picture = 0; picture < pictures; ++picture)
    {
        if (capture->CopyScreen())
            continue;
        std::uint64_t sum = 0;
        const auto pixels = capture->GetPixels();
        for (std::uint64_t index = 0; index < pixels.size; ++index)
            sum += pixels.data[index];
        Require(sum <= pixels.size * 255, "every pixel of a capture can be read");
        hasPicture = true;
    }
    return hasPicture;
}

/// Made when the first input comes: the process then connects, and lives with that one connection.
HostileServer& GetServer()
{
    static HostileServer s_server;
    return s_server;
}

void TakeMessages(System::Desktop::Window& window)
{
    constexpr int most = 64; // a claim of the keyboard is tried again and again
    for (int count = 0; count < most && window.GetState() != WindowState::Closed && window.HasMessage(); ++count)
        window.Update();
}

/// A window with a picture on it, and a capture of the screen. Whether it comes to all of that.
bool ShowWindow(X11Desktop& desktop, System::Desktop::Window& window)
{
    const std::unique_ptr<Desktops::PixelMemory> memory = desktop.MakePixelMemory();
    const bool isCreated = window.Create();
    const bool hasMemory = isCreated && memory->Create(window.GetNativeWindow(), s_screenWidth, s_screenHeight);
    const bool hasPicture = Capture(desktop); // in that memory, if it is lent
    if (!isCreated)
        return false;
    window.Show(window.Lock());
    window.BringToFront();
    const bool isDrawn = hasMemory && DrawFrame(*memory);
    TakeMessages(window);
    return hasPicture && isDrawn;
}

/// What a run does on an X server; it then takes messages for as long as the script has more. Whether it comes to
/// pictures.
bool UseDesktop(X11Desktop& desktop)
{
    constexpr int mostSteps = 256;
    static_cast<void>(desktop.ListDisplays());
    static_cast<void>(desktop.CheckCapture());
    System::Desktop::Window window(nullptr, "Window", {0, 0}, {s_screenWidth, s_screenHeight},
                                   System::Desktop::WindowType::Overlay);
    window.SetSurfaceKind(System::Desktop::SurfaceKind::Pixels);
    window.SetEventHandler(&HearEvent);
    const bool isShown = ShowWindow(desktop, window);
    const bool hasPicture = Capture(desktop);
    System::Math::Point position;
    desktop.GetPointer().Show(false);
    static_cast<void>(desktop.GetPointer().Move({5, 7}));
    for (int step = 0; step < mostSteps && GetServer().HasScript(); ++step)
    {
        static_cast<void>(desktop.GetPointer().ReadPosition(position)); // what is said comes with the answer
        TakeMessages(window);
    }
    desktop.GetPointer().Show(true);
    return isShown && hasPicture;
}

/// What the process keeps of earlier inputs.
void Forget(::Display* display)
{
    XMappingEvent keys = {};
    keys.type = MappingNotify;
    keys.display = display;
    keys.request = MappingKeyboard;
    XRefreshKeyboardMapping(&keys);
    Desktops::X11::PointerInput::GetInstance().RefreshAxes(display);
    // Xlib forgets the data of events that it is asked to throw away.
    for (XSync(display, False); XQLength(display) > 0;)
    {
        XEvent event = {};
        XNextEvent(display, &event);
        const Desktops::X11::EventData data(display, event);
    }
    static_cast<void>(System::Device::Cursor::TakeOwnMotion());
    Screen* const screen = DefaultScreenOfDisplay(display);
    screen->width = s_screenWidth;
    screen->height = s_screenHeight;
}

bool UseServer(Bytes script)
{
    GetServer().SetScript({});
    Forget(GetXDisplay());
    GetServer().SetScript(script);
    X11Desktop desktop;
    Desktops::SetDesktop(desktop);
    const bool hasWorked = UseDesktop(desktop);
    Desktops::SetDesktop(Tests::NullDesktop::GetInstance());
    Require(GetXDisplay() != nullptr, "a server that keeps to the protocol keeps its clients");
    GetServer().SetScript({});
    return hasWorked;
}

} // namespace

void HearServer(Bytes input)
{
    static_cast<void>(GetServer());
    // The process asks some things once: all inputs are heard alike after that.
    static const bool s_isReady = UseServer({});
    Require(s_isReady, "a sound server shows a window and gives pictures");
    static_cast<void>(UseServer(input));
}

} // namespace Orvik::Fuzz
