#pragma once

#include "Core/Graphics/Renderer/ObjectStore.h"
#include "Core/Graphics/Renderer/ShaderProgram.h"

#include <cstddef>
#include <cstdint>

namespace Orvik::Graphics::Renderer
{

/// What the renderers of all kinds have in common: their objects, and the shader program that draws them.
template <typename Object>
class ObjectRenderer
{
public:
    /// The object, or null. Valid until the next `Create` or `Remove`.
    [[nodiscard]] Object* Get(std::uint16_t id) { return m_objects.Find(id); }
    [[nodiscard]] const ObjectStore<Object>& GetObjects() const { return m_objects; }
    [[nodiscard]] std::size_t GetCount() const { return m_objects.GetCount(); }
    [[nodiscard]] GLuint GetProgram() const { return m_program; }

protected:
    ObjectRenderer() = default;
    ~ObjectRenderer() = default;

    /// Builds the program. False without a context, or if the shaders can't be built; log lines say why.
    [[nodiscard]] bool BuildProgram(const GLContext& context, const char* vertexFile, const char* fragmentFile)
    {
        m_program = CreateProgram(context, vertexFile, fragmentFile);
        return m_program != 0 && context.IsValid();
    }

    ObjectStore<Object> m_objects;
    GLuint m_program = 0;
    GLint m_modelLocation = -1;
};

} // namespace Orvik::Graphics::Renderer
