#pragma once

#include "Tests/EndToEnd/ProgramTest.h"
#include "Tests/EndToEnd/TestCompositor.h"
#include "Tests/Support/Desktop/InputDriver.h"
#include "Tests/Support/Desktop/OverlayWatcher.h"
#include "Tests/Support/Desktop/Screen.h"
#include "Tests/Support/VirtualDisplay.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace Orvik::Tests
{

/// Runs the built program on a virtual display, of 800 by 600 pixels unless a case asks for another size, with a person
/// at it; or on a compositor in one, if the environment says so.
///
/// These operations wait for the crosshair of each step before the next, as a person does. They throw
/// `std::runtime_error` if it doesn't come.
class DesktopTest : public ProgramTest
{
protected:
    static constexpr int s_width = 800;
    static constexpr int s_height = 600;

    explicit DesktopTest(int width = s_width, int height = s_height);
    ~DesktopTest() override;

    /// Skips the case under a Wine that shows overlays at a wrong place.
    void SetUp() override;

    /// A new display in place of the present one, with that many bits to the pixel.
    void MakeDesktop(std::uint32_t depth = 24);
    /// Ends the display. Who works on it goes first, as an X client doesn't outlive its server.
    void TakeDesktopAway();
    /// Makes the picture what the screen shows below all windows. Returns what that is all in all: a compositor may
    /// have a bar of its own.
    Picture ShowGround(const Picture& picture);
    /// Where the program has its cursor, as far as it is shown.
    [[nodiscard]] Position GetCursor() const;
    /// The same once all is shown that it has made of its input.
    [[nodiscard]] Position GetRestingCursor() const;
    /// Returns when the program waits, hidden, for its delay to be over. False if it doesn't come to that in time.
    [[nodiscard]] bool WaitForDelay(const ChildProcess& process) const;
    /// On a compositor: nudges the mouse now and then until the crosshair is there, or the usual limit is over.
    void NudgeTo(Position cursor);
    /// Starts the program and waits for its first frame. `cursor` is where its crosshair then is.
    [[nodiscard]] ChildProcess StartOverlay(const Arguments& arguments, Position cursor = {s_width / 2, s_height / 2});

    void MoveTo(Position position) { MoveTo(position, position); }
    /// The same where the crosshair can't follow the mouse all the way.
    void MoveTo(Position position, Position cursor);
    void Drag(Position from, Position to);
    /// Taps an arrow key that moves the cursor by one pixel.
    void TapArrow(const std::string& name, Position cursor);
    /// Ends the run by Escape and waits for its end.
    [[nodiscard]] ChildResult EndByEscape(ChildProcess& process);

    /// Writes `picture` as a PNG file into the working directory and returns its path.
    [[nodiscard]] std::string AddPicture(const Picture& picture, const std::string& name = "picture.png") const;
    [[nodiscard]] std::filesystem::path GetOutput() const { return m_installation.GetWork() / "out"; }

    std::optional<VirtualDisplay> m_display;        ///< none on a compositor, which has one of its own
    std::shared_ptr<NestedCompositor> m_compositor; ///< null on the X server alone
    std::optional<InputDriver> m_input;
    std::optional<Screen> m_screen;
    std::optional<OverlayWatcher> m_overlay;

private:
    void MakeXDesktop(std::uint32_t depth);
    void BorrowCompositor();

    Position m_size;
};

} // namespace Orvik::Tests
