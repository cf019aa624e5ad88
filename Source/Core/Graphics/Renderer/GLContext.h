#pragma once

#include "Desktops/NativeWindow.h"
#include "Desktops/OpenGL.h"

#include <memory>
#include <string>

namespace Orvik::Graphics::Renderer
{

/// The entry points. First those beyond OpenGL 1.1, in loading order: all of them are required, even those that are
/// never called.
struct EntryPoints
{
#define ORVIK_FOR_EACH_ENTRY_POINT(ENTRY)                                                                              \
    ENTRY(PFNGLCREATESHADERPROC, glCreateShader)                                                                       \
    ENTRY(PFNGLSHADERSOURCEPROC, glShaderSource)                                                                       \
    ENTRY(PFNGLCOMPILESHADERPROC, glCompileShader)                                                                     \
    ENTRY(PFNGLGETSHADERIVPROC, glGetShaderiv)                                                                         \
    ENTRY(PFNGLGETSHADERINFOLOGPROC, glGetShaderInfoLog)                                                               \
    ENTRY(PFNGLCREATEPROGRAMPROC, glCreateProgram)                                                                     \
    ENTRY(PFNGLATTACHSHADERPROC, glAttachShader)                                                                       \
    ENTRY(PFNGLDELETESHADERPROC, glDeleteShader)                                                                       \
    ENTRY(PFNGLLINKPROGRAMPROC, glLinkProgram)                                                                         \
    ENTRY(PFNGLUSEPROGRAMPROC, glUseProgram)                                                                           \
    ENTRY(PFNGLGETPROGRAMIVPROC, glGetProgramiv)                                                                       \
    ENTRY(PFNGLGETPROGRAMINFOLOGPROC, glGetProgramInfoLog)                                                             \
    ENTRY(PFNGLGETUNIFORMLOCATIONPROC, glGetUniformLocation)                                                           \
    ENTRY(PFNGLGETUNIFORMBLOCKINDEXPROC, glGetUniformBlockIndex)                                                       \
    ENTRY(PFNGLUNIFORMBLOCKBINDINGPROC, glUniformBlockBinding)                                                         \
    ENTRY(PFNGLUNIFORM1FPROC, glUniform1f)                                                                             \
    ENTRY(PFNGLUNIFORM2FPROC, glUniform2f)                                                                             \
    ENTRY(PFNGLUNIFORM4FPROC, glUniform4f)                                                                             \
    ENTRY(PFNGLUNIFORM1IVPROC, glUniform1iv)                                                                           \
    ENTRY(PFNGLUNIFORMMATRIX4FVPROC, glUniformMatrix4fv)                                                               \
    ENTRY(PFNGLGENVERTEXARRAYSPROC, glGenVertexArrays)                                                                 \
    ENTRY(PFNGLVERTEXATTRIBPOINTERPROC, glVertexAttribPointer)                                                         \
    ENTRY(PFNGLENABLEVERTEXATTRIBARRAYPROC, glEnableVertexAttribArray)                                                 \
    ENTRY(PFNGLBINDVERTEXARRAYPROC, glBindVertexArray)                                                                 \
    ENTRY(PFNGLBINDBUFFERBASEPROC, glBindBufferBase)                                                                   \
    ENTRY(PFNGLDELETEVERTEXARRAYSPROC, glDeleteVertexArrays)                                                           \
    ENTRY(PFNGLDELETEBUFFERSPROC, glDeleteBuffers)                                                                     \
    ENTRY(PFNGLGENBUFFERSPROC, glGenBuffers)                                                                           \
    ENTRY(PFNGLBINDBUFFERPROC, glBindBuffer)                                                                           \
    ENTRY(PFNGLBUFFERDATAPROC, glBufferData)                                                                           \
    ENTRY(PFNGLBUFFERSUBDATAPROC, glBufferSubData)                                                                     \
    ENTRY(PFNGLBINDBUFFERRANGEPROC, glBindBufferRange)                                                                 \
    ENTRY(PFNGLACTIVETEXTUREPROC, glActiveTexture)                                                                     \
    ENTRY(PFNGLGENERATEMIPMAPPROC, glGenerateMipmap)                                                                   \
    ENTRY(PFNGLCOMPRESSEDTEXIMAGE2DPROC, glCompressedTexImage2D)                                                       \
    ENTRY(PFNGLTEXIMAGE3DPROC, glTexImage3D)                                                                           \
    ENTRY(PFNGLTEXSUBIMAGE3DPROC, glTexSubImage3D)                                                                     \
    ENTRY(PFNGLDRAWARRAYSINSTANCEDPROC, glDrawArraysInstanced)

#define ORVIK_DECLARE_ENTRY_POINT(Type, name) Type name = nullptr;
    ORVIK_FOR_EACH_ENTRY_POINT(ORVIK_DECLARE_ENTRY_POINT)
    // The ones of OpenGL 1.1, which every library exports.
    ORVIK_FOR_EACH_LIBRARY_FUNCTION(ORVIK_DECLARE_ENTRY_POINT)
#undef ORVIK_DECLARE_ENTRY_POINT

    /// Also newer than OpenGL 1.1, but not required; null if the driver doesn't have it.
    PFNGLGETACTIVEUNIFORMBLOCKIVPROC glGetActiveUniformBlockiv = nullptr;

    /// Whether none of the required ones is null.
    [[nodiscard]] bool IsComplete() const noexcept;
};

/// An OpenGL 3.3 core context on a window: double-buffered, 8 bits for each of red, green, blue and alpha, 24 for
/// depth, 8 for stencil, 4 samples. There is no fallback, except for the alpha of a screen that doesn't have it with
/// these colours. It belongs to the thread that created it.
class GLContext
{
public:
    GLContext() = default;
    GLContext(const GLContext&) = delete;
    GLContext& operator=(const GLContext&) = delete;
    ~GLContext() = default;

    /// Makes the context current on the window, loads the entry points and sets the state for all drawing. The result
    /// is `IsValid`. After a failure one log line says why, and no context is left; the line is an error only if the
    /// context is demanded. `className` is the window's registered class, UTF-8.
    bool Create(Desktops::NativeWindow window, const char* className, bool isDemanded = true);

    /// Releases the context and deletes it; the context isn't valid any more. Does nothing without one.
    void Destroy(Desktops::NativeWindow window);

    /// Shows what was drawn. Does nothing without a context, or if the window's server is gone.
    void SwapBuffers(Desktops::NativeWindow window);

    /// A context is current and all entry points are loaded. Drawing code tests this first.
    [[nodiscard]] bool IsValid() const { return m_valid; }
    [[nodiscard]] const EntryPoints& GetEntryPoints() const { return m_entryPoints; }
    /// The text of `GL_VERSION`, which also becomes the window's title; empty before `Create`.
    [[nodiscard]] const std::string& GetVersion() const { return m_version; }

private:
    [[nodiscard]] bool Bind(Desktops::NativeWindow window, const char* className);
    void LoadEntryPoints();
    void SetFixedState() const;
    /// Logs why there is no context. The line begins with the version, or with "OpenGL" if that isn't known yet.
    void Report(const char* failure) const;

    bool m_valid = false;
    bool m_isDemanded = true;
    EntryPoints m_entryPoints;
    std::unique_ptr<Desktops::OpenGLSurface> m_surface; ///< null without a context
    std::string m_version;
};

} // namespace Orvik::Graphics::Renderer
