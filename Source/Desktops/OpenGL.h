#pragma once

#include "Desktops/OpenGLSurface.h"

// The OpenGL types, constants and function-pointer types of the Khronos header, without the system's headers. The
// Khronos header would include the Windows headers for the calling convention, so that is defined here instead.
#if !defined(APIENTRY)
#if defined(__MINGW32__)
#define APIENTRY __stdcall
#else
#define APIENTRY
#endif
#define ORVIK_UNDEFINE_APIENTRY
#endif

#include <GL/glcorearb.h>

// The entry points that the OpenGL library of every system exports.
extern "C"
{
    void APIENTRY glClear(GLbitfield mask);
    void APIENTRY glViewport(GLint x, GLint y, GLsizei width, GLsizei height);
    void APIENTRY glEnable(GLenum capability);
    void APIENTRY glDisable(GLenum capability);
    void APIENTRY glBlendFunc(GLenum sourceFactor, GLenum targetFactor);
    void APIENTRY glClearColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha);
    void APIENTRY glClearDepth(GLdouble depth);
    void APIENTRY glDrawArrays(GLenum mode, GLint first, GLsizei count);
    void APIENTRY glDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices);
    void APIENTRY glGetIntegerv(GLenum name, GLint* values);
    const GLubyte* APIENTRY glGetString(GLenum name);
    void APIENTRY glPolygonMode(GLenum face, GLenum mode);
    void APIENTRY glPixelStorei(GLenum name, GLint value);
    void APIENTRY glGenTextures(GLsizei count, GLuint* textures);
    void APIENTRY glDeleteTextures(GLsizei count, const GLuint* textures);
    void APIENTRY glBindTexture(GLenum target, GLuint texture);
    void APIENTRY glTexImage2D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height,
                               GLint border, GLenum format, GLenum type, const void* pixels);
    void APIENTRY glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height,
                                  GLenum format, GLenum type, const void* pixels);
    void APIENTRY glTexParameteri(GLenum target, GLenum name, GLint value);
}

#if defined(ORVIK_UNDEFINE_APIENTRY)
#undef APIENTRY
#undef ORVIK_UNDEFINE_APIENTRY
#endif

/// The ones that the program calls.
#define ORVIK_FOR_EACH_LIBRARY_FUNCTION(ENTRY)                                                                         \
    ENTRY(PFNGLCLEARPROC, glClear)                                                                                     \
    ENTRY(PFNGLVIEWPORTPROC, glViewport)                                                                               \
    ENTRY(PFNGLENABLEPROC, glEnable)                                                                                   \
    ENTRY(PFNGLDISABLEPROC, glDisable)                                                                                 \
    ENTRY(PFNGLBLENDFUNCPROC, glBlendFunc)                                                                             \
    ENTRY(PFNGLCLEARCOLORPROC, glClearColor)                                                                           \
    ENTRY(PFNGLCLEARDEPTHPROC, glClearDepth)                                                                           \
    ENTRY(PFNGLDRAWARRAYSPROC, glDrawArrays)                                                                           \
    ENTRY(PFNGLDRAWELEMENTSPROC, glDrawElements)                                                                       \
    ENTRY(PFNGLGETINTEGERVPROC, glGetIntegerv)                                                                         \
    ENTRY(PFNGLGETSTRINGPROC, glGetString)                                                                             \
    ENTRY(PFNGLPOLYGONMODEPROC, glPolygonMode)                                                                         \
    ENTRY(PFNGLPIXELSTOREIPROC, glPixelStorei)                                                                         \
    ENTRY(PFNGLGENTEXTURESPROC, glGenTextures)                                                                         \
    ENTRY(PFNGLDELETETEXTURESPROC, glDeleteTextures)                                                                   \
    ENTRY(PFNGLBINDTEXTUREPROC, glBindTexture)                                                                         \
    ENTRY(PFNGLTEXIMAGE2DPROC, glTexImage2D)                                                                           \
    ENTRY(PFNGLTEXSUBIMAGE2DPROC, glTexSubImage2D)                                                                     \
    ENTRY(PFNGLTEXPARAMETERIPROC, glTexParameteri)

namespace Orvik::Desktops
{

/// One of these as the linked library exports it, because a driver need not find them by name. Null for any other.
[[nodiscard]] OpenGLFunction FindLibraryFunction(const char* name);

} // namespace Orvik::Desktops
