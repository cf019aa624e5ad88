#pragma once

#include "Core/Graphics/Renderer/GLContext.h"

namespace Orvik::Graphics::Renderer
{

/// Vertices of the square, to be drawn as a triangle strip.
inline constexpr GLsizei s_unitSquareVertices = 4;

/// Makes the square of side 1 with its corner at the origin as attribute 0, two floats per vertex. The vertex array and
/// the buffer stay bound; the caller deletes them.
void CreateUnitSquare(const EntryPoints& gl, GLuint& vertexArray, GLuint& vertexBuffer);

} // namespace Orvik::Graphics::Renderer
