#pragma once

#include "Core/Graphics/Renderer/GLContext.h"

#include <string>
#include <vector>

namespace Orvik::Graphics::Renderer
{

/// Compiles and links two files of the shader directory. 0 if that fails, with a log line for each failure. The program
/// ends with the context; it isn't deleted.
[[nodiscard]] GLuint CreateProgram(const GLContext& context, const char* vertexFile, const char* fragmentFile);

/// Whether two files of the shader directory could become a program, as far as that is visible without a driver: they
/// can be read, and begin like shaders. If false, there are the same log lines as from `CreateProgram`.
[[nodiscard]] bool CheckProgramFiles(const char* vertexFile, const char* fragmentFile);

/// Compiles a zero-terminated source text. 0 if that fails, with a log line.
[[nodiscard]] GLuint CompileShader(const GLContext& context, const char* source, GLenum type);

/// Reads a file of the shader directory into `text` and adds a zero byte. False, with a log line, if that fails.
[[nodiscard]] bool LoadShaderFile(const char* file, std::vector<char>& text);

} // namespace Orvik::Graphics::Renderer
