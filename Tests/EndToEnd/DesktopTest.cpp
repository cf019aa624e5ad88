#include "Tests/EndToEnd/DesktopTest.h"

#include "Tests/Support/Desktop/OverlaySteps.h"

#include <chrono>
#include <sys/stat.h>
#include <thread>

namespace Orvik::Tests
{

DesktopTest::DesktopTest(int width, int height) : m_size{width, height}
{
    MakeDesktop();
}

void DesktopTest::SetUp()
{
    constexpr int firstThatCuts = 10;
    if (const int version = Installation::GetWineVersion(); version >= firstThatCuts)
        GTEST_SKIP() << "Wine " << version << " cuts windows to the screen, so that an overlay is a row too low.";
}

DesktopTest::~DesktopTest()
{
    // What a case that failed has left behind isn't the next one's.
    if (m_compositor != nullptr && HasFailure())
        EndTestCompositor();
}

void DesktopTest::TakeDesktopAway()
{
    m_overlay.reset();
    m_screen.reset();
    m_input.reset();
    m_display.reset();
    if (m_compositor != nullptr)
        EndTestCompositor();
    m_compositor.reset();
}

void DesktopTest::MakeDesktop(std::uint32_t depth)
{
    if (GetTestCompositorKind())
        BorrowCompositor();
    else
        MakeXDesktop(depth);
    m_input->MoveTo({m_size.x / 2, m_size.y / 2});
}

void DesktopTest::MakeXDesktop(std::uint32_t depth)
{
    TakeDesktopAway();
    m_display.emplace(static_cast<std::uint32_t>(m_size.x), static_cast<std::uint32_t>(m_size.y), depth);
    m_environment["DISPLAY"] = m_display->GetName();
    m_input.emplace(m_display->GetName());
    m_screen.emplace(m_display->GetName());
    m_overlay.emplace(m_display->GetName());
}

void DesktopTest::BorrowCompositor()
{
    m_compositor = BorrowTestCompositor(m_size.x, m_size.y);
    for (const auto& [name, value] : m_compositor->GetEnvironment())
        m_environment[name] = value;
    m_user = m_compositor->GetUser();
    if (m_user)
    {
        m_installation.OpenToOthers();
        umask(0); // what the test makes is the program's to change
    }
    const std::string name = m_compositor->GetDisplayName();
    m_input.emplace(name);
    m_input->StopKeyRepeat();
    m_screen.emplace(name);
    m_overlay.emplace(name, m_compositor->GetShown());
}

Picture DesktopTest::ShowGround(const Picture& picture)
{
    if (m_compositor == nullptr)
    {
        m_screen->ShowOnRoot(picture);
        return picture;
    }
    Picture shown = m_compositor->ShowGround(picture);
    m_overlay->SetGround(shown);
    return shown;
}

// The desktop's pointer goes with it on X11. A compositor may hold it while the program moves a cursor of its own.
Position DesktopTest::GetCursor() const
{
    return m_compositor == nullptr ? m_input->GetPointer() : m_overlay->FindCrosshair().value_or(Position{-1, -1});
}

Position DesktopTest::GetRestingCursor() const
{
    // On X11 the pointer's place is known ahead of its picture. Else that comes with a frame.
    constexpr std::chrono::milliseconds pause(400);
    Position cursor = GetCursor();
    while (m_compositor != nullptr)
    {
        std::this_thread::sleep_for(pause);
        const Position next = GetCursor();
        if (next == cursor)
            break;
        cursor = next;
    }
    return cursor;
}

bool DesktopTest::WaitForDelay(const ChildProcess& process) const
{
    if (m_compositor == nullptr)
        return m_overlay->WaitFor(OverlayWatcher::State::Hidden);
    // No window shows it. The line comes well before.
    const bool isUp =
        process.WaitUntil([&process] { return process.GetOutput().find("Using '") != std::string::npos; });
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    return isUp && m_overlay->GetState() == OverlayWatcher::State::Missing;
}

void DesktopTest::NudgeTo(Position cursor)
{
    const auto end = std::chrono::steady_clock::now() + OverlayWatcher::DefaultLimit;
    while (m_compositor != nullptr && std::chrono::steady_clock::now() < end &&
           !m_overlay->WaitForCrosshair(cursor, std::chrono::seconds(1)))
        m_input->Nudge();
}

ChildProcess DesktopTest::StartOverlay(const Arguments& arguments, Position cursor)
{
    ChildProcess process = Start(arguments);
    NudgeTo(cursor);
    AwaitOverlay(process, *m_overlay, cursor);
    // The cursor of an overlay that doesn't know of the pointer yet is put to it at its first motion.
    if (m_compositor != nullptr)
    {
        MoveTo({cursor.x + 1, cursor.y});
        MoveTo(cursor);
    }
    return process;
}

void DesktopTest::MoveTo(Position position, Position cursor)
{
    if (m_compositor != nullptr)
    {
        if (m_input->GetPointer() != position)
            m_input->MoveTo(position);
        NudgeTo(cursor);
    }
    MoveMouse(*m_input, *m_overlay, position, cursor);
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
    TapArrowKey(*m_input, *m_overlay, name, cursor);
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
