#include "Core/Graphics/Tools/SnipBench.h"

#include "Core/Graphics/Tools/SnipBenchInput.h"

#include <utility>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Desktop::KeyCode;
using System::Math::Point;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;

} // namespace

void SnipBench::UpdateAidKeys(const ToolContext& context, Renderer::Renderer& renderer)
{
    if (context.type != ToolEventType::Key)
        return;
    // A held key is pressed again and again: it takes one selection back, not all of them.
    const bool isRepeated = context.pressed && context.key == m_heldKey;
    m_heldKey = context.pressed ? context.key : std::uint8_t{0};
    if (!context.pressed)
        return;
    const ToolSwitches& switches = m_aids.GetSwitches();
    m_aids.ChooseLabel(context.key, renderer);
    if (m_snipState != SnipState::Ready || isRepeated)
        return;
    if (switches.undo && IsKey(context, KeyCode::Backspace) && onTakeBack && onTakeBack())
        m_aids.TakeBack(renderer);
    else if (switches.toggle && IsKey(context, KeyCode::Tab))
        SetMode(m_snipMode == SnipMode::Rectangle ? SnipMode::Polygon : SnipMode::Rectangle);
}

ShownSelection SnipBench::GetDeliveredSelection() const
{
    if (m_snipMode == SnipMode::Rectangle)
        return MakeShownSelection(GetView(), m_rectangleModeData);
    const std::vector<Point>& ring = m_polygonModeData.points;
    return MakeShownSelection(GetView(), std::vector<Point>(ring.begin(), ring.end() - 1));
}

void SnipBench::ShowSelectionAids(Renderer::Renderer& renderer)
{
    const SnipView view = GetView();
    if (m_snipMode == SnipMode::Rectangle)
    {
        m_aids.ShowSelection(MakeShownSelection(view, m_rectangleModeData), m_capture, view, renderer);
        return;
    }
    std::vector<Point> corners = m_polygonModeData.points;
    corners.push_back(GetCursor());
    m_aids.ShowSelection(MakeShownSelection(view, std::move(corners)), m_capture, view, renderer);
}

} // namespace Orvik::Graphics::Tools
