#include "Core/Graphics/Renderer/UnitSquare.h"

#include <array>

namespace Orvik::Graphics::Renderer
{

void CreateUnitSquare(const EntryPoints& gl, GLuint& vertexArray, GLuint& vertexBuffer)
{
    // clang-format off
    constexpr std::array<float, 8> vertices = {
        0.0F, 1.0F,
        0.0F, 0.0F,
        1.0F, 1.0F,
        1.0F, 0.0F,
    };
    // clang-format on
    gl.glGenVertexArrays(1, &vertexArray);
    gl.glGenBuffers(1, &vertexBuffer);
    gl.glBindVertexArray(vertexArray);
    gl.glBindBuffer(GL_ARRAY_BUFFER, vertexBuffer);
    gl.glBufferData(GL_ARRAY_BUFFER, sizeof(vertices), vertices.data(), GL_STATIC_DRAW);
    gl.glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
    gl.glEnableVertexAttribArray(0);
}

} // namespace Orvik::Graphics::Renderer
