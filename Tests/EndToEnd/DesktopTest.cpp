#include "Tests/EndToEnd/DesktopTest.h"

#include <stdexcept>

namespace Orvik::Tests
{

DesktopTest::DesktopTest(int width, int height) : m_size{width, height}
{
    MakeDesktop();
}

void DesktopTest::TakeDesktopAway()
{
    m_overlay.reset();
    m_screen.reset();
    m_input.reset();
    m_display.reset();
}

void DesktopTest::MakeDesktop(std::uint32_t depth)
{
    TakeDesktopAway();
    m_display.emplace(static_cast<std::uint32_t>(m_size.x), static_cast<std::uint32_t>(m_size.y), depth);
    m_environment["DISPLAY"] = m_display->GetName();
    m_input.emplace(m_display->GetName());
    m_screen.emplace(m_display->GetName());
    m_overlay.emplace(m_display->GetName());
    m_input->MoveTo({m_size.x / 2, m_size.y / 2});
}

ChildProcess DesktopTest::StartOverlay(const Arguments& arguments, Position cursor)
{
    ChildProcess process = Start(arguments);
    if (!m_overlay->WaitForCrosshair(cursor))
    {
        const ChildResult result = process.Wait(std::chrono::milliseconds(0));
        throw std::runtime_error("The overlay doesn't come up.\n" + result.standardOutput + result.standardError);
    }
    return process;
}

void DesktopTest::MoveTo(Position position, Position cursor)
{
    // A motion to the same place is an event too, and it would be on its way when the next step begins.
    if (m_input->GetPointer() != position)
        m_input->MoveTo(position);
    if (!m_overlay->WaitForCrosshair(cursor))
        throw std::runtime_error("The crosshair doesn't come to " + std::to_string(cursor.x) + ", " +
                                 std::to_string(cursor.y) + ".");
}

void DesktopTest::Drag(Position from, Position to)
{
    MoveTo(from);
    m_input->PressButton(1);
    MoveTo(to);
    m_input->ReleaseButton(1);
}

void DesktopTest::TapArrow(const std::string& name, Position cursor)
{
    m_input->TapKey(name);
    if (!m_overlay->WaitForCrosshair(cursor))
        throw std::runtime_error("The key " + name + " doesn't move the cursor to " + std::to_string(cursor.x) + ", " +
                                 std::to_string(cursor.y) + ".");
}

ChildResult DesktopTest::EndByEscape(ChildProcess& process)
{
    m_input->TapKey("Escape");
    return process.Wait(s_endLimit);
}

std::string DesktopTest::AddPicture(const Picture& picture, const std::string& name) const
{
    const std::filesystem::path file = m_installation.GetWork() / name;
    SavePng(picture, file);
    return file.string();
}

} // namespace Orvik::Tests
