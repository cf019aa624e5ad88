#pragma once

#include "Core/Graphics/Renderer/FrameState.h"
#include "Core/Graphics/Renderer/ObjectRenderer.h"
#include "Core/System/Types/Matrix4.h"
#include "Desktops/OpenGL.h"

#include <cstdint>

namespace Orvik::Graphics::Renderer
{

class Renderer;

/// A square of side 1 with its corner at the origin and one colour.
struct Quad
{
    std::uint16_t id = 0;
    bool visible = true;
    System::Math::Matrix4 model;
    System::Math::Vector4 color = {1.0F, 1.0F, 1.0F, 1.0F};
};

/// Draws rectangles of one colour each.
class QuadRenderer : public ObjectRenderer<Quad>
{
public:
    /// Builds the shader program and the square. False without a context, or if the shaders can't be built; log lines
    /// say why.
    [[nodiscard]] bool Initialize(Renderer& renderer);

    /// Draws the visible quads in their order. Does nothing without a context.
    void Render(Renderer& renderer);

    /// Frees the OpenGL objects, if there is a context, and forgets all quads.
    void Shutdown(Renderer& renderer);

    /// Adds a quad and stores its id in `id`. Returns `id`.
    std::uint16_t& Create(std::uint16_t& id);
    /// Removes the quad; the last one takes its place in the order. False for an unknown id.
    bool Remove(std::uint16_t id);

    /// Adds the state of the quads in the next frame.
    void AppendState(FrameState& state) const;

private:
    GLuint m_vertexArray = 0;
    GLuint m_vertexBuffer = 0;
    GLint m_colorLocation = -1;
};

} // namespace Orvik::Graphics::Renderer
