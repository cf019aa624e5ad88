#include "Core/Graphics/Renderer/QuadRenderer.h"

#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Renderer/UnitSquare.h"

namespace Orvik::Graphics::Renderer
{

bool QuadRenderer::Initialize(Renderer& renderer)
{
    const GLContext& context = renderer.GetContext();
    if (!BuildProgram(context, "quad.vert", "quad.frag"))
        return false;
    const EntryPoints& gl = context.GetEntryPoints();
    m_modelLocation = gl.glGetUniformLocation(m_program, "model");
    m_colorLocation = gl.glGetUniformLocation(m_program, "color");
    CreateUnitSquare(gl, m_vertexArray, m_vertexBuffer);
    gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
    gl.glBindVertexArray(0);
    return true;
}

void QuadRenderer::Render(Renderer& renderer)
{
    if (!renderer.GetContext().IsValid())
        return;
    const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
    gl.glUseProgram(m_program);
    gl.glBindVertexArray(m_vertexArray);
    gl.glBindBuffer(GL_ARRAY_BUFFER, m_vertexBuffer);
    for (const Quad& quad : m_objects)
    {
        if (!quad.visible)
            continue;
        gl.glUniformMatrix4fv(m_modelLocation, 1, GL_FALSE, quad.model.elements.data());
        gl.glUniform4f(m_colorLocation, quad.color.x, quad.color.y, quad.color.z, quad.color.w);
        gl.glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, s_unitSquareVertices, 1);
    }
    gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
    gl.glBindVertexArray(0);
}

void QuadRenderer::AppendState(FrameState& state) const
{
    for (const Quad& quad : m_objects)
    {
        if (!quad.visible)
            continue;
        state.Add(quad.id);
        state.Add(quad.model);
        state.Add(quad.color);
    }
}

void QuadRenderer::Shutdown(Renderer& renderer)
{
    if (renderer.GetContext().IsValid())
    {
        const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
        gl.glDeleteBuffers(1, &m_vertexBuffer);
        gl.glDeleteVertexArrays(1, &m_vertexArray);
    }
    m_vertexBuffer = 0;
    m_vertexArray = 0;
    m_objects.Clear();
}

std::uint16_t& QuadRenderer::Create(std::uint16_t& id)
{
    id = m_objects.Add().id;
    return id;
}

bool QuadRenderer::Remove(std::uint16_t id)
{
    return m_objects.Remove(id).has_value();
}

} // namespace Orvik::Graphics::Renderer
