#include "Core/Graphics/Renderer/Renderer.h"

#include "Core/Graphics/Renderer/ShaderProgram.h"
#include "Core/System/Log/LogSite.h"

#include <algorithm>

namespace Orvik::Graphics::Renderer
{
namespace
{

// The uniform block "Shared", as the shaders declare it.
constexpr GLuint s_sharedBinding = 1;
constexpr GLintptr s_projectionOffset = 0;
constexpr GLintptr s_viewOffset = 64;
constexpr GLintptr s_screenSizeOffset = 128;
constexpr GLsizeiptr s_sharedSize = 136;
constexpr GLsizeiptr s_sharedRounding = 8; ///< to whole vectors, where the driver can't be asked

constexpr float s_referenceHeight = 1080.0F; ///< of the screen that things are drawn for

} // namespace

bool Renderer::Initialize(Desktops::NativeWindow window, const char* className)
{
    m_mustDraw = true;
    m_drawsIntoMemory = m_choice.kind == Desktops::SurfaceKind::Pixels;
    if (m_drawsIntoMemory)
        return InitializeForRaster();
    if (!m_context.Create(window, className, m_choice.isByHand))
    {
        if (!m_choice.isByHand)
        {
            m_drawsIntoMemory = true;
            return InitializeForRaster();
        }
        System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Error,
                           "Failed to initialize render context. Debug draw is disabled!");
        return false;
    }
    if (!InitializeMembers())
    {
        System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Error,
                           "Failed to initialize renderer. Debug draw is disabled!");
        return false;
    }
    if (!m_context.IsValid())
    {
        System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Error,
                           "Render interface is not initialized.");
        return false;
    }
    CreateSharedBuffer();
    m_initialized = true;
    return true;
}

// The shaders aren't used, but checking them shows in the same way that the installation is complete.
bool Renderer::InitializeForRaster()
{
    const bool isReady =
        CheckProgramFiles("line.vert", "line.frag") && CheckProgramFiles("polygon.vert", "polygon.frag") &&
        CheckProgramFiles("texture.vert", "texture.frag") && CheckProgramFiles("font.vert", "font.frag") &&
        m_textRenderer.InitializeForRaster() && CheckProgramFiles("quad.vert", "quad.frag");
    if (!isReady)
    {
        System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Error,
                           "Failed to initialize renderer. Debug draw is disabled!");
        return false;
    }
    m_textureRenderer.InitializeForRaster();
    m_initialized = true;
    return true;
}

void Renderer::Resize(Desktops::NativeWindow window, std::int32_t width, std::int32_t height)
{
    if (!m_initialized || width <= 0 || height <= 0 || (!m_drawsIntoMemory && !m_context.IsValid()))
        return;
    m_mustDraw = true;
    m_screenSize = {static_cast<float>(width), static_cast<float>(height)};
    m_projection = System::Math::Matrix4::Orthographic(m_screenSize.width, m_screenSize.height);
    m_view = System::Math::Matrix4();
    if (m_drawsIntoMemory)
    {
        m_rasterPainter.Resize(window, width, height);
        return;
    }
    const EntryPoints& gl = m_context.GetEntryPoints();
    gl.glViewport(0, 0, width, height);
    gl.glBindBuffer(GL_UNIFORM_BUFFER, m_sharedBuffer);
    gl.glBufferSubData(GL_UNIFORM_BUFFER, s_projectionOffset, sizeof(m_projection), &m_projection);
    gl.glBufferSubData(GL_UNIFORM_BUFFER, s_viewOffset, sizeof(m_view), &m_view);
    gl.glBufferSubData(GL_UNIFORM_BUFFER, s_screenSizeOffset, sizeof(m_screenSize), &m_screenSize);
    gl.glBindBuffer(GL_UNIFORM_BUFFER, 0);
}

bool Renderer::Render(Desktops::NativeWindow window)
{
    if (!m_initialized || window == Desktops::NativeWindow::None)
        return false;
    if (m_drawsIntoMemory)
        return m_rasterPainter.Render(*this);
    if (!m_context.IsValid() || !HasChanged())
        return false;
    m_context.GetEntryPoints().glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    m_polygonRenderer.Render(*this);
    m_quadRenderer.Render(*this);
    m_textureRenderer.Render(*this);
    m_lineRenderer.Render(*this);
    m_textRenderer.Render(*this);
    m_context.SwapBuffers(window);
    return true;
}

void Renderer::Invalidate()
{
    m_mustDraw = true;
    m_rasterPainter.Invalidate();
}

bool Renderer::HasChanged()
{
    m_wanted.Clear();
    m_polygonRenderer.AppendState(m_wanted);
    m_quadRenderer.AppendState(m_wanted);
    m_textureRenderer.AppendState(m_wanted);
    m_lineRenderer.AppendState(m_wanted);
    m_textRenderer.AppendState(m_wanted);
    const bool hasChanged = m_mustDraw || m_wanted != m_shown;
    std::swap(m_wanted, m_shown);
    m_mustDraw = false;
    return hasChanged;
}

void Renderer::Shutdown(Desktops::NativeWindow window)
{
    if (!m_initialized)
        return;
    m_quadRenderer.Shutdown(*this);
    m_textRenderer.Shutdown(*this);
    m_textureRenderer.Shutdown(*this);
    m_polygonRenderer.Shutdown(*this);
    m_lineRenderer.Shutdown(*this);
    m_rasterPainter.Shutdown();
    if (m_context.IsValid())
        m_context.GetEntryPoints().glDeleteBuffers(1, &m_sharedBuffer);
    m_sharedBuffer = 0;
    m_context.Destroy(window);
    m_initialized = false;
}

float Renderer::GetUiScale() const
{
    return std::max(m_screenSize.height / s_referenceHeight, 1.0F);
}

bool Renderer::InitializeMembers()
{
    return m_lineRenderer.Initialize(*this) && m_polygonRenderer.Initialize(*this) &&
           m_textureRenderer.Initialize(*this) && m_textRenderer.Initialize(*this) && m_quadRenderer.Initialize(*this);
}

std::array<GLuint, 5> Renderer::GetPrograms() const
{
    return {m_lineRenderer.GetProgram(), m_polygonRenderer.GetProgram(), m_textureRenderer.GetProgram(),
            m_textRenderer.GetProgram(), m_quadRenderer.GetProgram()};
}

// A driver may round up the block's size, and may read beyond a smaller buffer.
GLsizeiptr Renderer::GetSharedSize() const
{
    const EntryPoints& gl = m_context.GetEntryPoints();
    GLsizeiptr size = s_sharedSize;
    if (gl.glGetActiveUniformBlockiv == nullptr)
        return size + s_sharedRounding;
    for (const GLuint program : GetPrograms())
    {
        GLint wanted = 0;
        gl.glGetActiveUniformBlockiv(program, gl.glGetUniformBlockIndex(program, "Shared"), GL_UNIFORM_BLOCK_DATA_SIZE,
                                     &wanted);
        size = std::max<GLsizeiptr>(size, wanted);
    }
    return size;
}

void Renderer::CreateSharedBuffer()
{
    const EntryPoints& gl = m_context.GetEntryPoints();
    const GLsizeiptr size = GetSharedSize();
    gl.glGenBuffers(1, &m_sharedBuffer);
    gl.glBindBuffer(GL_UNIFORM_BUFFER, m_sharedBuffer);
    gl.glBufferData(GL_UNIFORM_BUFFER, size, nullptr, GL_STATIC_DRAW);
    gl.glBindBuffer(GL_UNIFORM_BUFFER, 0);
    gl.glBindBufferRange(GL_UNIFORM_BUFFER, s_sharedBinding, m_sharedBuffer, 0, size);
    for (const GLuint program : GetPrograms())
        gl.glUniformBlockBinding(program, gl.glGetUniformBlockIndex(program, "Shared"), s_sharedBinding);
}

} // namespace Orvik::Graphics::Renderer
