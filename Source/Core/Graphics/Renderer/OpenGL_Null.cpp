// The entry points that an OpenGL library exports, as a recorder.
#include "Core/Graphics/Renderer/OpenGL.h"

#include "Core/Graphics/Renderer/GLRecorder.h"

#include <cstring>

namespace
{

using Orvik::Graphics::Renderer::GLCall;
using Orvik::Graphics::Renderer::GLRecorder;

template <typename... Arguments>
GLCall& Record(const char* name, Arguments... arguments)
{
    return GLRecorder::GetInstance().Record(name, arguments...);
}

void AttachPixels(GLCall& call, GLsizei width, GLsizei height, GLenum format, const void* pixels)
{
    if (pixels == nullptr)
        return;
    const std::size_t bytesPerPixel = format == GL_BGRA ? 4 : 3;
    call.data.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * bytesPerPixel);
    std::memcpy(call.data.data(), pixels, call.data.size());
}

} // namespace

extern "C"
{
    void glClear(GLbitfield mask)
    {
        Record("glClear", mask);
    }

    void glViewport(GLint x, GLint y, GLsizei width, GLsizei height)
    {
        Record("glViewport", x, y, width, height);
    }

    void glEnable(GLenum capability)
    {
        Record("glEnable", capability);
    }

    void glDisable(GLenum capability)
    {
        Record("glDisable", capability);
    }

    void glBlendFunc(GLenum sourceFactor, GLenum targetFactor)
    {
        Record("glBlendFunc", sourceFactor, targetFactor);
    }

    void glClearColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha)
    {
        Record("glClearColor", red, green, blue, alpha);
    }

    void glClearDepth(GLdouble depth)
    {
        Record("glClearDepth", depth);
    }

    void glDrawArrays(GLenum mode, GLint first, GLsizei count)
    {
        Record("glDrawArrays", mode, first, count);
    }

    void glDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices)
    {
        Record("glDrawElements", mode, count, type, indices);
    }

    const GLubyte* glGetString(GLenum name)
    {
        Record("glGetString", name);
        return reinterpret_cast<const GLubyte*>(GLRecorder::GetInstance().version.c_str());
    }

    void glPolygonMode(GLenum face, GLenum mode)
    {
        Record("glPolygonMode", face, mode);
    }

    void glPixelStorei(GLenum name, GLint value)
    {
        Record("glPixelStorei", name, value);
    }

    void glGenTextures(GLsizei count, GLuint* textures)
    {
        Record("glGenTextures", count);
        GLRecorder::GetInstance().Generate("Textures", count, textures);
    }

    void glDeleteTextures(GLsizei count, const GLuint* textures)
    {
        Record("glDeleteTextures", count, *textures);
        GLRecorder::GetInstance().Delete("Textures", count, textures);
    }

    void glBindTexture(GLenum target, GLuint texture)
    {
        Record("glBindTexture", target, texture);
    }

    void glTexImage2D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height, GLint border,
                      GLenum format, GLenum type, const void* pixels)
    {
        AttachPixels(Record("glTexImage2D", target, level, internalFormat, width, height, border, format, type, pixels),
                     width, height, format, pixels);
    }

    void glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height, GLenum format,
                         GLenum type, const void* pixels)
    {
        AttachPixels(Record("glTexSubImage2D", target, level, x, y, width, height, format, type, pixels), width, height,
                     format, pixels);
    }

    // A question, not a step: it isn't remembered.
    void glGetIntegerv(GLenum name, GLint* values)
    {
        if (name == GL_MAX_TEXTURE_SIZE)
            *values = GLRecorder::GetInstance().maximumTextureSize;
    }

    void glTexParameteri(GLenum target, GLenum name, GLint value)
    {
        Record("glTexParameteri", target, name, value);
    }
}
