#include "Core/Graphics/Renderer/ShaderProgram.h"

#include "Core/System/Log/LogSite.h"
#include "Core/System/Runtime/DirectoryCache.h"
#include "Core/System/Text/Paths.h"

#include <array>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace Orvik::Graphics::Renderer
{
namespace
{

constexpr GLsizei s_logSize = 512; ///< a longer log is cut

/// No shader is nearly as large; a file that is can't be one.
constexpr std::uintmax_t s_maxFileSize = std::uintmax_t{1024} * 1024;

std::uintmax_t GetFileSize(const std::filesystem::path& path)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error)
        throw std::filesystem::filesystem_error("file_size", path, error);
    if (size > s_maxFileSize)
        throw std::length_error("The file is too large.");
    return size;
}

bool ReadShaderFile(const char* file, std::vector<char>& text)
{
    std::string path;
    System::Runtime::GetShaderPath(file, path);
    const std::filesystem::path nativePath = System::Text::PathFromUtf8(path);
    std::ifstream stream(nativePath, std::ios::binary);
    if (!stream.is_open())
    {
        System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Error, "Can't open shader: ", path);
        return false;
    }
    // Read after opening, so that a missing file is reported as one that can't be opened.
    const auto size = static_cast<std::size_t>(GetFileSize(nativePath));
    text.resize(size + 1);
    stream.read(text.data(), static_cast<std::streamsize>(size));
    text.back() = '\0';
    return true;
}

/// Loads and compiles one stage. False if it doesn't compile; without its file `shader` is 0.
bool CompileStage(const GLContext& context, const char* file, GLenum type, std::vector<char>& text, GLuint& shader)
{
    if (!LoadShaderFile(file, text))
        return true;
    shader = CompileShader(context, text.data(), type);
    return shader != 0;
}

void ReportUncompiled(GLenum type, const char* log)
{
    System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Error,
                       "OpenGL: Failed to compile shader type ", type, " with error ", log);
}

void ReportUnlinked(const char* vertexFile, const char* fragmentFile, const char* log)
{
    System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Error, "OpenGL: Failed to link program (",
                       vertexFile, ", ", fragmentFile, ") with error ", log);
}

/// What is known about a stage that no driver has compiled.
enum class StageState : std::uint8_t
{
    Whole,
    Missing,
    Damaged,
};

StageState CheckStage(const char* file, GLenum type, std::vector<char>& text)
{
    constexpr std::string_view beginning = "#version";
    if (!LoadShaderFile(file, text))
        return StageState::Missing;
    if (std::string_view(text.data()).starts_with(beginning))
        return StageState::Whole;
    ReportUncompiled(type, "it doesn't begin as a shader does");
    return StageState::Damaged;
}

} // namespace

GLuint CreateProgram(const GLContext& context, const char* vertexFile, const char* fragmentFile)
{
    if (!context.IsValid())
        return 0;
    std::vector<char> text;
    GLuint vertexShader = 0;
    GLuint fragmentShader = 0;
    if (!CompileStage(context, vertexFile, GL_VERTEX_SHADER, text, vertexShader) ||
        !CompileStage(context, fragmentFile, GL_FRAGMENT_SHADER, text, fragmentShader))
        return 0;

    const EntryPoints& gl = context.GetEntryPoints();
    const GLuint program = gl.glCreateProgram();
    gl.glAttachShader(program, vertexShader);
    gl.glAttachShader(program, fragmentShader);
    gl.glDeleteShader(vertexShader);
    gl.glDeleteShader(fragmentShader);
    gl.glLinkProgram(program);
    GLint status = GL_FALSE;
    gl.glGetProgramiv(program, GL_LINK_STATUS, &status);
    // Some drivers link a program that lacks a stage, which then draws nothing.
    if (status != GL_FALSE && vertexShader != 0 && fragmentShader != 0)
        return program;

    std::array<char, s_logSize> log = {};
    gl.glGetProgramInfoLog(program, s_logSize, nullptr, log.data());
    ReportUnlinked(vertexFile, fragmentFile, log.data());
    return 0;
}

GLuint CompileShader(const GLContext& context, const char* source, GLenum type)
{
    if (!context.IsValid())
        return 0;
    const EntryPoints& gl = context.GetEntryPoints();
    const GLuint shader = gl.glCreateShader(type);
    gl.glShaderSource(shader, 1, &source, nullptr);
    gl.glCompileShader(shader);
    GLint status = GL_FALSE;
    gl.glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    if (status != GL_FALSE)
        return shader;

    std::array<char, s_logSize> log = {};
    gl.glGetShaderInfoLog(shader, s_logSize, nullptr, log.data());
    ReportUncompiled(type, log.data());
    return 0;
}

bool CheckProgramFiles(const char* vertexFile, const char* fragmentFile)
{
    std::vector<char> text;
    const StageState vertex = CheckStage(vertexFile, GL_VERTEX_SHADER, text);
    if (vertex == StageState::Damaged)
        return false;
    const StageState fragment = CheckStage(fragmentFile, GL_FRAGMENT_SHADER, text);
    if (fragment == StageState::Damaged)
        return false;
    if (vertex == StageState::Whole && fragment == StageState::Whole)
        return true;
    ReportUnlinked(vertexFile, fragmentFile, "a stage is missing");
    return false;
}

bool LoadShaderFile(const char* file, std::vector<char>& text)
{
    try
    {
        return ReadShaderFile(file, text);
    }
    catch (const std::exception& exception)
    {
        System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Error,
                           "Failed to load shader: ", exception.what());
        return false;
    }
}

} // namespace Orvik::Graphics::Renderer
