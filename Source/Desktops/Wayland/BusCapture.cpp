#include "Desktops/Wayland/BusCapture.h"

#include "Desktops/Wayland/KWinCapture.h"
#include "Desktops/Wayland/PortalCapture.h"
#include "Desktops/Wayland/Session.h"

#include <algorithm>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// Empty where the compositor says no size.
System::Math::Rectangle GetLogicalArea(const OutputDescription& output)
{
    if (!output.IsPossible())
        return {};
    return {output.x, output.y, output.x + output.logicalWidth, output.y + output.logicalHeight};
}

/// What all outputs take.
System::Math::Rectangle GetDesktopArea(const Globals& globals, System::Math::Rectangle area)
{
    for (const auto& output : globals.GetOutputs())
    {
        const System::Math::Rectangle other = GetLogicalArea(output->GetDescription());
        area = {std::min(area.left, other.left), std::min(area.top, other.top), std::max(area.right, other.right),
                std::max(area.bottom, other.bottom)};
    }
    return area;
}

} // namespace

Failure TryWays(const std::vector<std::unique_ptr<OutputCapture>>& ways, const CapturedOutput& output,
                unsigned char* target)
{
    std::string reasons;
    for (const auto& way : ways)
    {
        const CaptureAnswer answer = way->Capture(output, target);
        if (answer.outcome == CaptureOutcome::Taken)
            return std::nullopt;
        reasons += (reasons.empty() ? "" : "; ") + answer.reason;
        if (answer.outcome == CaptureOutcome::Failed)
            break;
    }
    return reasons;
}

BusCapture::BusCapture(const Session& session, const SessionBus::Interrupt& interrupt) : m_session(session)
{
    m_ways.push_back(std::make_unique<KWinCapture>(interrupt));
    m_ways.push_back(std::make_unique<PortalCapture>(interrupt));
}

bool BusCapture::IsOffered()
{
    return std::any_of(m_ways.begin(), m_ways.end(), [](const auto& way) { return way->IsOffered(); });
}

Failure BusCapture::Read(const Output& output, CaptureTarget& target)
{
    const OutputDescription& description = output.GetDescription();
    const System::Math::Rectangle logical = GetLogicalArea(description);
    return TryWays(m_ways,
                   {description.name, logical, GetDesktopArea(m_session.globals, logical), target.width, target.height},
                   target.memory.GetBytes());
}

} // namespace Orvik::Desktops::Wayland
