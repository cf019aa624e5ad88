#include "Core/Graphics/Tools/FinishedMarks.h"

#include "Core/Graphics/Tools/OutlineShape.h"
#include "Core/Graphics/Tools/ToolObjects.h"

namespace Orvik::Graphics::Tools
{
namespace
{

/// Over the capture and a bright selection, below the magnifier and the selection under way.
constexpr float s_finishedDepth = 0.16F;

} // namespace

void FinishedMarks::Add(const ShownSelection& selection, const System::Math::Vector4& colour, Size window,
                        Renderer::LineRenderer& renderer)
{
    OutlineShape shape = selection.corners.empty() ? MakeRectangleShape(selection.area, window)
                                                   : MakePolygonShape(selection.corners, window);
    std::uint16_t id = 0;
    renderer.Create(id, shape.points);
    Place(renderer.Get(id), System::Math::Matrix4::Translation(shape.left, shape.bottom, s_finishedDepth), colour);
    m_ids.push_back(id);
}

void FinishedMarks::RemoveLast(Renderer::LineRenderer& renderer)
{
    if (m_ids.empty())
        return;
    renderer.Remove(m_ids.back());
    m_ids.pop_back();
}

void FinishedMarks::Clear(Renderer::LineRenderer& renderer)
{
    while (!m_ids.empty())
        RemoveLast(renderer);
}

} // namespace Orvik::Graphics::Tools
