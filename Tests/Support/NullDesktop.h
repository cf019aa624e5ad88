#pragma once

#include "Core/System/Types/Point.h"
#include "Core/System/Types/Rectangle.h"
#include "Desktops/Desktop.h"
#include "Desktops/DisplayDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// The values of the null desktop. One thread.
struct NullDesktopValues
{
    // The displays that the display cache finds. The cache gives them their ids.
    std::vector<System::Device::Display::DisplayDescriptor> displays;
    std::uint16_t activeDisplayId = System::Device::Display::InvalidDisplayId;

    // The pointer.
    System::Math::Point cursorPosition;
    std::vector<System::Math::Point> cursorMoves; ///< every position that was set
    bool cursorFails = false;                     ///< whether reading and moving fail
    bool cursorVisible = true;

    // Captures.
    Desktops::Failure captureObstacle; ///< known before it is tried
    bool captureInitializes = true;
    bool captureSucceeds = true;
    std::function<void()> onCapture; ///< called before each copy; may be empty
    /// The pixel at a screen position, as blue | green << 8 | red << 16 | fourth byte << 24.
    std::function<std::uint32_t(std::int32_t x, std::int32_t y)> screenPixel;
    std::vector<System::Math::Rectangle> captures; ///< every region that was copied

    // Surfaces.
    bool hasGraphicsCard = true;
    bool surfacesCreate = true;
    std::vector<std::vector<System::Math::Rectangle>> presentations; ///< the parts that each frame showed
    std::vector<std::uint32_t> shownPixels; ///< on the last surface in memory: blue | green << 8 | red << 16
    std::uint64_t frames = 0;               ///< begun in memory
    std::uint64_t finishedFrames = 0;       ///< ended in memory

    // Windows.
    bool windowRegisters = true;
    bool windowCreates = true;
    /// "RegisterClass", "UnregisterClass", "Create", "Destroy", "Show", "Hide", "SetClickThrough(true)",
    /// "SetClickThrough(false)" and "BringToFront", in the order of the calls. Pumping isn't remembered.
    std::vector<std::string> windowCalls;
    std::size_t answers = 0; ///< how often a window has handled messages whose senders wait
    /// The messages that the pump finds, one per call. Each is run with the window that pumps.
    std::deque<std::function<void(System::Desktop::Window&)>> messages;
    std::string windowTitle;      ///< the last one that was set
    std::uint64_t waits = 0;      ///< how often a window has waited for a message
    std::function<void()> onWait; ///< called before each wait; may be empty

    Desktops::RunHandlers handlers;
};

/// A desktop that consists of values, accepts every call, and records it. With it the code above the desktop can be
/// tested without a screen. Its OpenGL is the `GLRecorder`. One thread.
class NullDesktop final : public Desktops::Desktop, public Desktops::DesktopPointer, public NullDesktopValues
{
public:
    [[nodiscard]] static NullDesktop& GetInstance();

    /// Restores the start values.
    void Reset() { static_cast<NullDesktopValues&>(*this) = NullDesktopValues(); }

    [[nodiscard]] const char* GetName() const override { return "Null"; }
    void SetRunHandlers(const Desktops::RunHandlers& given) override { handlers = given; }
    [[nodiscard]] bool PrepareDisplays(const System::Log::Context& log) override;
    [[nodiscard]] Desktops::DisplayList ListDisplays() override;
    [[nodiscard]] Desktops::Failure CheckCapture() override { return captureObstacle; }
    [[nodiscard]] Desktops::DesktopPointer& GetPointer() override { return *this; }
    [[nodiscard]] Desktops::GraphicsCard FindGraphicsCard() override;
    [[nodiscard]] std::unique_ptr<Desktops::DesktopWindow> MakeWindow(System::Desktop::Window& owner) override;
    [[nodiscard]] std::unique_ptr<Desktops::PlatformCaptureContext> MakeCaptureContext() override;
    [[nodiscard]] std::unique_ptr<Desktops::PixelMemory> MakePixelMemory() override;
    [[nodiscard]] std::unique_ptr<Desktops::OpenGLSurface> MakeOpenGLSurface() override;

    [[nodiscard]] Desktops::Failure ReadPosition(System::Math::Point& position) override;
    [[nodiscard]] Desktops::Failure Move(const System::Math::Point& position) override;
    void Show(bool visible) override { cursorVisible = visible; }
};

} // namespace Orvik::Tests
