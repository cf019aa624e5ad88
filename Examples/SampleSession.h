#pragma once

#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/Desktop/InputDriver.h"
#include "Tests/Support/Desktop/OverlayWatcher.h"
#include "Tests/Support/Desktop/Screen.h"
#include "Tests/Support/VirtualDisplay.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Orvik::Examples
{

/// The sample desktop on a virtual X server, and a person who works the built program on it. Operations that wait throw
/// `std::runtime_error` if what they wait for doesn't come.
class SampleSession
{
public:
    /// The font is looked for in the resources that lie with the program.
    explicit SampleSession(std::filesystem::path program);

    /// Starts the program and waits for its overlay.
    [[nodiscard]] Tests::ChildProcess Start(const std::vector<std::string>& arguments) const;
    /// The same without an overlay.
    [[nodiscard]] Tests::ChildProcess StartHidden(const std::vector<std::string>& arguments) const;

    /// Moves the mouse, and waits until the crosshair is there.
    void MoveTo(Tests::Position position);
    /// Drags with the left button from one corner of the area to the other, in steps, and keeps the button down.
    void DragOver(const Tests::Area& area);
    /// Taps an arrow key, and waits until the crosshair is one pixel further.
    void TapArrow(const std::string& name, Tests::Position target);

    [[nodiscard]] Tests::InputDriver& GetInput() { return m_input; }
    [[nodiscard]] Tests::Picture CaptureScreen() const { return m_screen.CaptureAll(); }

    /// Waits for the program's end, which has to be a good one, and returns its standard output.
    [[nodiscard]] static std::string Finish(Tests::ChildProcess& process);

private:
    std::filesystem::path m_program;
    Tests::VirtualDisplay m_display;
    Tests::Screen m_screen;
    Tests::InputDriver m_input;
    Tests::OverlayWatcher m_overlay;
};

} // namespace Orvik::Examples
