#include "Examples/SampleSession.h"

#include "Examples/SampleDesktop.h"

#include <stdexcept>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace Orvik::Examples
{
namespace
{

using Tests::ChildProcess;
using Tests::ChildResult;
using Tests::Position;

constexpr std::chrono::seconds s_endLimit{20};

std::vector<std::string> MakeEnvironment(const std::string& displayName)
{
    std::vector<std::string> environment;
    for (char** entry = environ; *entry != nullptr; ++entry)
        if (!std::string_view(*entry).starts_with("DISPLAY="))
            environment.emplace_back(*entry);
    environment.push_back("DISPLAY=" + displayName);
    return environment;
}

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
    if (!m_overlay.WaitForCrosshair(m_input.GetPointer()))
        throw std::runtime_error("The overlay doesn't come up.");
    return process;
}

ChildProcess SampleSession::StartHidden(const std::vector<std::string>& arguments) const
{
    return ChildProcess({m_program, arguments, MakeEnvironment(m_display.GetName()), "."});
}

void SampleSession::MoveTo(Position position)
{
    m_input.MoveTo(position);
    if (!m_overlay.WaitForCrosshair(position))
        throw std::runtime_error("The overlay doesn't follow the mouse.");
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
    m_input.TapKey(name);
    if (!m_overlay.WaitForCrosshair(target))
        throw std::runtime_error("The overlay doesn't follow the arrow keys.");
}

std::string SampleSession::Finish(ChildProcess& process)
{
    const ChildResult result = process.Wait(s_endLimit);
    if (result.exitCode != 0)
        throw std::runtime_error("The program failed.\n" + result.standardOutput + result.standardError);
    return result.standardOutput;
}

} // namespace Orvik::Examples
