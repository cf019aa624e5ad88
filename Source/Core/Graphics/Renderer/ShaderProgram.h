#pragma once

#include "Core/Graphics/Renderer/GLContext.h"

#include <string>
#include <vector>

namespace Orvik::Graphics::Renderer
{

/// Compiles and links two files of the shader directory. 0 if that fails, with a log line for each thing that went
/// wrong. The program's name goes with the context; nobody deletes it.
[[nodiscard]] GLuint CreateProgram(const GLContext& context, const char* vertexFile, const char* fragmentFile);

/// Whether two files of the shader directory could become a program, as far as that can be seen without a driver: they
/// can be read, and begin as shaders do. False with the log lines that `CreateProgram` writes for such files.
[[nodiscard]] bool CheckProgramFiles(const char* vertexFile, const char* fragmentFile);

/// Compiles a zero-terminated source text. 0 if that fails, with a log line.
[[nodiscard]] GLuint CompileShader(const GLContext& context, const char* source, GLenum type);

/// Reads a file of the shader directory into `text`, with a zero byte behind it. False, with a log line, if it can't.
[[nodiscard]] bool LoadShaderFile(const char* file, std::vector<char>& text);

} // namespace Orvik::Graphics::Renderer
