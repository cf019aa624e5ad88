#include "Tests/Support/RecordingEntryPoints.h"

#include "Tests/Support/GLRecorder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::EntryPoints;

enum EntryPointIndex : std::size_t
{
#define ORVIK_NUMBER_ENTRY_POINT(Type, name) Index_##name,
    ORVIK_FOR_EACH_ENTRY_POINT(ORVIK_NUMBER_ENTRY_POINT) ORVIK_FOR_EACH_LIBRARY_FUNCTION(ORVIK_NUMBER_ENTRY_POINT)
#undef ORVIK_NUMBER_ENTRY_POINT
        EntryPointCount
};

constexpr std::array<const char*, EntryPointCount> s_names = {
#define ORVIK_NAME_ENTRY_POINT(Type, name) #name,
    ORVIK_FOR_EACH_ENTRY_POINT(ORVIK_NAME_ENTRY_POINT) ORVIK_FOR_EACH_LIBRARY_FUNCTION(ORVIK_NAME_ENTRY_POINT)
#undef ORVIK_NAME_ENTRY_POINT
};

GLRecorder& GetRecorder()
{
    return GLRecorder::GetInstance();
}

/// Records the numbers of a call and gives nothing back: right for most entry points.
template <std::size_t Index, typename Function>
struct PlainEntryPoint;

template <std::size_t Index, typename Result, typename... Arguments>
struct PlainEntryPoint<Index, Result (*)(Arguments...)>
{
    static Result Call(Arguments... arguments)
    {
        GetRecorder().Record(s_names[Index], arguments...);
        return Result();
    }
};

void AttachData(GLCall& call, const void* data, std::size_t size)
{
    if (data == nullptr || size == 0)
        return;
    call.data.resize(size);
    std::memcpy(call.data.data(), data, size);
}

/// Gives the wrongness of a shader or program as OpenGL does: cut to `size` bytes, the last of them zero.
void CopyInfoLog(GLsizei size, GLchar* text)
{
    const std::string& infoLog = GetRecorder().infoLog;
    const std::size_t length = std::min(infoLog.size(), static_cast<std::size_t>(size) - 1);
    infoLog.copy(text, length);
    text[length] = '\0';
}

void SetShaderEntryPoints(EntryPoints& gl)
{
    gl.glCreateShader = [](GLenum type)
    {
        GetRecorder().Record("glCreateShader", type);
        return GetRecorder().MakeName();
    };
    gl.glShaderSource = [](GLuint shader, GLsizei count, const GLchar* const* sources, const GLint* lengths)
    { GetRecorder().Record("glShaderSource", shader, count, sources, lengths).text = *sources; };
    gl.glGetShaderiv = [](GLuint shader, GLenum name, GLint* value)
    {
        // A shader is asked for right behind its creation.
        const double type = GetRecorder().GetCalls("glCreateShader").back().arguments.front();
        GetRecorder().Record("glGetShaderiv", shader, name);
        *value = type == static_cast<double>(GetRecorder().failingStage) ? GL_FALSE : GL_TRUE;
    };
    gl.glGetShaderInfoLog = [](GLuint shader, GLsizei size, GLsizei* length, GLchar* text)
    {
        GetRecorder().Record("glGetShaderInfoLog", shader, size, length);
        CopyInfoLog(size, text);
    };
}

void SetProgramEntryPoints(EntryPoints& gl)
{
    gl.glCreateProgram = []()
    {
        GetRecorder().Record("glCreateProgram");
        return GetRecorder().MakeName();
    };
    gl.glGetProgramiv = [](GLuint program, GLenum name, GLint* value)
    {
        GetRecorder().Record("glGetProgramiv", program, name);
        *value = GetRecorder().programsLink ? GL_TRUE : GL_FALSE;
    };
    gl.glGetProgramInfoLog = [](GLuint program, GLsizei size, GLsizei* length, GLchar* text)
    {
        GetRecorder().Record("glGetProgramInfoLog", program, size, length);
        CopyInfoLog(size, text);
    };
    gl.glGetUniformLocation = [](GLuint program, const GLchar* name)
    {
        GetRecorder().Record("glGetUniformLocation", program).text = name;
        return GetRecorder().GetLocation(name);
    };
    gl.glGetUniformBlockIndex = [](GLuint program, const GLchar* name)
    {
        GetRecorder().Record("glGetUniformBlockIndex", program).text = name;
        return GLuint{0};
    };
    gl.glGetActiveUniformBlockiv = [](GLuint program, GLuint index, GLenum name, GLint* value)
    {
        GetRecorder().Record("glGetActiveUniformBlockiv", program, index, name);
        *value = GetRecorder().blockSize;
    };
    if (!GetRecorder().tellsBlockSizes)
        gl.glGetActiveUniformBlockiv = nullptr;
    gl.glUniform1iv = [](GLint location, GLsizei count, const GLint* values)
    {
        AttachData(GetRecorder().Record("glUniform1iv", location, count), values,
                   static_cast<std::size_t>(count) * sizeof(GLint));
    };
    gl.glUniformMatrix4fv = [](GLint location, GLsizei count, GLboolean isTransposed, const GLfloat* values)
    {
        AttachData(GetRecorder().Record("glUniformMatrix4fv", location, count, isTransposed), values,
                   static_cast<std::size_t>(count) * 16 * sizeof(GLfloat));
    };
}

void SetObjectEntryPoints(EntryPoints& gl)
{
    gl.glGenVertexArrays = [](GLsizei count, GLuint* names)
    {
        GetRecorder().Record("glGenVertexArrays", count);
        GetRecorder().Generate("VertexArrays", count, names);
    };
    gl.glDeleteVertexArrays = [](GLsizei count, const GLuint* names)
    {
        GetRecorder().Record("glDeleteVertexArrays", count, *names);
        GetRecorder().Delete("VertexArrays", count, names);
    };
    gl.glGenBuffers = [](GLsizei count, GLuint* names)
    {
        GetRecorder().Record("glGenBuffers", count);
        GetRecorder().Generate("Buffers", count, names);
    };
    gl.glDeleteBuffers = [](GLsizei count, const GLuint* names)
    {
        GetRecorder().Record("glDeleteBuffers", count, *names);
        GetRecorder().Delete("Buffers", count, names);
    };
    gl.glVertexAttribPointer =
        [](GLuint attribute, GLint size, GLenum type, GLboolean isNormalized, GLsizei stride, const void* offset)
    {
        GetRecorder().Record("glVertexAttribPointer", attribute, size, type, isNormalized, stride,
                             reinterpret_cast<std::uintptr_t>(offset));
    };
}

void SetUploadEntryPoints(EntryPoints& gl)
{
    gl.glBufferData = [](GLenum target, GLsizeiptr size, const void* data, GLenum usage) {
        AttachData(GetRecorder().Record("glBufferData", target, size, data, usage), data,
                   static_cast<std::size_t>(size));
    };
    gl.glBufferSubData = [](GLenum target, GLintptr offset, GLsizeiptr size, const void* data) {
        AttachData(GetRecorder().Record("glBufferSubData", target, offset, size), data, static_cast<std::size_t>(size));
    };
    gl.glTexSubImage3D = [](GLenum target, GLint level, GLint x, GLint y, GLint z, GLsizei width, GLsizei height,
                            GLsizei depth, GLenum format, GLenum type, const void* pixels)
    {
        AttachData(
            GetRecorder().Record("glTexSubImage3D", target, level, x, y, z, width, height, depth, format, type, pixels),
            pixels,
            static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * static_cast<std::size_t>(depth));
    };
}

void AttachPixels(GLCall& call, GLsizei width, GLsizei height, GLenum format, const void* pixels)
{
    const std::size_t bytesPerPixel = format == GL_BGRA ? 4 : 3;
    AttachData(call, pixels, static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * bytesPerPixel);
}

/// Those of OpenGL 1.1 that do more than be written down.
void SetTextureFunctions(EntryPoints& gl)
{
    gl.glGetString = [](GLenum name)
    {
        GetRecorder().Record("glGetString", name);
        return reinterpret_cast<const GLubyte*>(GetRecorder().version.c_str());
    };
    gl.glGenTextures = [](GLsizei count, GLuint* textures)
    {
        GetRecorder().Record("glGenTextures", count);
        GetRecorder().Generate("Textures", count, textures);
    };
    gl.glDeleteTextures = [](GLsizei count, const GLuint* textures)
    {
        GetRecorder().Record("glDeleteTextures", count, *textures);
        GetRecorder().Delete("Textures", count, textures);
    };
    gl.glTexImage2D = [](GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height, GLint border,
                         GLenum format, GLenum type, const void* pixels)
    {
        AttachPixels(GetRecorder().Record("glTexImage2D", target, level, internalFormat, width, height, border, format,
                                          type, pixels),
                     width, height, format, pixels);
    };
    gl.glTexSubImage2D = [](GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height, GLenum format,
                            GLenum type, const void* pixels)
    {
        AttachPixels(GetRecorder().Record("glTexSubImage2D", target, level, x, y, width, height, format, type, pixels),
                     width, height, format, pixels);
    };
    // A question, not a step: it isn't remembered.
    gl.glGetIntegerv = [](GLenum name, GLint* values)
    {
        if (name == GL_MAX_TEXTURE_SIZE)
            *values = GetRecorder().maximumTextureSize;
    };
}

} // namespace

EntryPoints MakeRecordingEntryPoints()
{
    EntryPoints gl;
#define ORVIK_SET_PLAIN_ENTRY_POINT(Type, name) gl.name = &PlainEntryPoint<Index_##name, Type>::Call;
    ORVIK_FOR_EACH_ENTRY_POINT(ORVIK_SET_PLAIN_ENTRY_POINT)
    ORVIK_FOR_EACH_LIBRARY_FUNCTION(ORVIK_SET_PLAIN_ENTRY_POINT)
#undef ORVIK_SET_PLAIN_ENTRY_POINT
    SetShaderEntryPoints(gl);
    SetProgramEntryPoints(gl);
    SetObjectEntryPoints(gl);
    SetUploadEntryPoints(gl);
    SetTextureFunctions(gl);

    const std::string& missing = GetRecorder().missingEntryPoint;
#define ORVIK_LEAVE_OUT_ENTRY_POINT(Type, name) gl.name = missing == #name ? nullptr : gl.name;
    ORVIK_FOR_EACH_ENTRY_POINT(ORVIK_LEAVE_OUT_ENTRY_POINT)
#undef ORVIK_LEAVE_OUT_ENTRY_POINT
    return gl;
}

} // namespace Orvik::Tests
