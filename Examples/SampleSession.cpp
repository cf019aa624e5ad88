#include "Examples/SampleSession.h"

#include "Examples/SampleDesktop.h"
#include "Tests/Support/Desktop/OverlaySteps.h"

#include <stdexcept>
#include <utility>

namespace Orvik::Examples
{
namespace
{

using Tests::ChildProcess;
using Tests::ChildResult;
using Tests::Position;

constexpr std::chrono::seconds s_endLimit{20};

std::filesystem::path GetFontFile(const std::filesystem::path& program)
{
    const std::filesystem::path root = program.parent_path().parent_path().parent_path();
    return root / "Resources" / "UI" / "Textures" / "Mulish-Regular.ttf";
}

} // namespace

SampleSession::SampleSession(std::filesystem::path program)
    : m_program(std::move(program)),
      m_screen(m_display.GetName()),
      m_input(m_display.GetName()),
      m_overlay(m_display.GetName())
{
    m_screen.ShowOnRoot(MakeSampleDesktop(m_screen.GetWidth(), m_screen.GetHeight(), GetFontFile(m_program)));
}

ChildProcess SampleSession::Start(const std::vector<std::string>& arguments) const
{
    ChildProcess process = StartHidden(arguments);
    Tests::AwaitOverlay(process, m_overlay, m_input.GetPointer());
    return process;
}

ChildProcess SampleSession::StartHidden(const std::vector<std::string>& arguments) const
{
    return ChildProcess({m_program, arguments,
                         Tests::MakeEnvironment({{"DISPLAY", m_display.GetName()}, {"ORVIK_DESKTOP", "x11"}}), "."});
}

void SampleSession::MoveTo(Position position)
{
    Tests::MoveMouse(m_input, m_overlay, position, position);
}

void SampleSession::DragOver(const Tests::Area& area)
{
    MoveTo({area.x, area.y});
    m_input.PressButton(1);
    constexpr int steps = 10;
    for (int step = 1; step <= steps; ++step)
        MoveTo({area.x + area.width * step / steps, area.y + area.height * step / steps});
}

void SampleSession::TapArrow(const std::string& name, Position target)
{
    Tests::TapArrowKey(m_input, m_overlay, name, target);
}

std::string SampleSession::Finish(ChildProcess& process)
{
    const ChildResult result = process.Wait(s_endLimit);
    if (result.exitCode != 0)
        throw std::runtime_error("The program failed.\n" + result.standardOutput + result.standardError);
    return result.standardOutput;
}

} // namespace Orvik::Examples
