#include "Core/Graphics/Renderer/LineRenderer.h"

#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/System/Error/Assertion.h"

#include <array>
#include <cstddef>
#include <utility>

namespace Orvik::Graphics::Renderer
{
namespace
{

using System::Math::Vector4;

constexpr GLuint s_pointBinding = 0;
constexpr GLsizei s_verticesPerSegment = 6;
/// A prepared list of n points has n - 3 segments.
constexpr std::size_t s_pointsWithoutSegment = 3;

/// Mirrors `next` at `point`.
Vector4 Extrapolate(const Vector4& point, const Vector4& next)
{
    return {point.x - (next.x - point.x), point.y - (next.y - point.y), point.z - (next.z - point.z),
            point.w - (next.w - point.w)};
}

/// Adds one more point at each end, so that every segment has a neighbour on both sides.
void AddNeighbours(std::vector<Vector4>& points)
{
    const std::size_t last = points.size() - 1;
    const bool isRing = points.front() == points.back();
    const Vector4 front = isRing ? points[last - 1] : Extrapolate(points[0], points[1]);
    const Vector4 back = isRing ? points[1] : Extrapolate(points[last], points[last - 1]);
    points.insert(points.begin(), front);
    points.push_back(back);
}

} // namespace

bool LineRenderer::Initialize(Renderer& renderer)
{
    const GLContext& context = renderer.GetContext();
    if (!BuildProgram(context, "line.vert", "line.frag"))
        return false;
    const EntryPoints& gl = context.GetEntryPoints();
    m_modelLocation = gl.glGetUniformLocation(m_program, "model");
    m_colorLocation = gl.glGetUniformLocation(m_program, "color");
    m_thicknessLocation = gl.glGetUniformLocation(m_program, "thickness");
    m_dashLengthLocation = gl.glGetUniformLocation(m_program, "dashLength");
    m_gapLengthLocation = gl.glGetUniformLocation(m_program, "gapLength");

    // The vertex array has no attributes; a core context draws nothing without one.
    gl.glGenVertexArrays(1, &m_vertexArray);
    gl.glGenBuffers(1, &m_pointBuffer);
    gl.glBindVertexArray(m_vertexArray);
    gl.glBindBuffer(GL_UNIFORM_BUFFER, m_pointBuffer);
    gl.glBindBufferBase(GL_UNIFORM_BUFFER, s_pointBinding, m_pointBuffer);
    gl.glBufferData(GL_UNIFORM_BUFFER, s_maxPoints * sizeof(Vector4), nullptr, GL_DYNAMIC_DRAW);
    gl.glBindBuffer(GL_UNIFORM_BUFFER, 0);
    gl.glBindVertexArray(0);
    return true;
}

void LineRenderer::Render(Renderer& renderer)
{
    if (!renderer.GetContext().IsValid())
        return;
    const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
    gl.glUseProgram(m_program);
    gl.glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    gl.glBindVertexArray(m_vertexArray);
    gl.glBindBufferBase(GL_UNIFORM_BUFFER, s_pointBinding, m_pointBuffer);
    for (const Line& line : m_objects)
    {
        if (line.visible && !DrawLine(renderer, line))
            break;
    }
    gl.glBindBuffer(GL_UNIFORM_BUFFER, 0);
    gl.glBindVertexArray(0);
}

bool LineRenderer::DrawLine(Renderer& renderer, const Line& line)
{
    const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
    gl.glUniformMatrix4fv(m_modelLocation, 1, GL_FALSE, line.model.elements.data());
    gl.glUniform4f(m_colorLocation, line.color.x, line.color.y, line.color.z, line.color.w);
    gl.glUniform1f(m_thicknessLocation, line.thickness);
    gl.glUniform1f(m_dashLengthLocation, line.dashLength);
    gl.glUniform1f(m_gapLengthLocation, line.gapLength);

    if (!IsDrawable(line))
        return false;
    if (line.points.size() <= s_pointsWithoutSegment)
        return true;
    gl.glBufferSubData(GL_UNIFORM_BUFFER, 0, static_cast<GLsizeiptr>(line.points.size() * sizeof(Vector4)),
                       line.points.data());
    const auto segments = static_cast<GLsizei>(line.points.size() - s_pointsWithoutSegment);
    gl.glDrawArrays(GL_TRIANGLES, 0, segments * s_verticesPerSegment);
    return true;
}

bool LineRenderer::IsDrawable(const Line& line)
{
    ORVIK_ASSERT(line.points.size() <= s_maxPoints, "Line object can't draw so many points!");
    return line.points.size() <= s_maxPoints;
}

void LineRenderer::AppendState(FrameState& state) const
{
    for (const Line& line : m_objects)
    {
        if (!line.visible)
            continue;
        state.Add(line.id);
        state.Add(line.points);
        state.Add(line.model);
        state.Add(line.color);
        state.Add(std::array<float, 3>{line.thickness, line.dashLength, line.gapLength});
    }
}

void LineRenderer::Shutdown(Renderer& renderer)
{
    if (renderer.GetContext().IsValid())
    {
        const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
        gl.glDeleteBuffers(1, &m_pointBuffer);
        gl.glDeleteVertexArrays(1, &m_vertexArray);
    }
    m_pointBuffer = 0;
    m_vertexArray = 0;
    m_objects.Clear();
}

std::uint16_t& LineRenderer::Create(std::uint16_t& id, std::vector<Vector4>& points)
{
    id = m_objects.Add().id;
    Update(id, points);
    return id;
}

bool LineRenderer::Update(std::uint16_t id, std::vector<Vector4>& points)
{
    Line* const line = m_objects.Find(id);
    if (line == nullptr)
        return false;
    const std::ptrdiff_t lastIndex = std::ssize(points) - 1;
    ORVIK_ASSERT(lastIndex > 0, "Line object requires at least 2 points.");
    if (lastIndex <= 0)
        return false;
    AddNeighbours(points);
    line->points = std::move(points);
    points.clear();
    return true;
}

bool LineRenderer::Remove(std::uint16_t id)
{
    return m_objects.Remove(id).has_value();
}

} // namespace Orvik::Graphics::Renderer
