#include "Core/Graphics/Renderer/Renderer.h"

#include "Core/System/Log/Site/LogSite.h"

#include <algorithm>

namespace Orvik::Graphics::Renderer
{
namespace
{

constexpr System::Log::Context s_context{System::Log::StreamID::Graphics};

// The uniform block "Shared", as the shaders declare it.
constexpr GLuint s_sharedBinding = 1;
constexpr GLintptr s_projectionOffset = 0;
constexpr GLintptr s_viewOffset = 64;
constexpr GLintptr s_screenSizeOffset = 128;
constexpr GLsizeiptr s_sharedSize = 136;

constexpr float s_referenceHeight = 1080.0F; ///< of the screen that things are drawn for

} // namespace

bool Renderer::Initialize(System::Desktop::NativeWindow window, const char* className)
{
    if (!m_context.Create(window, className))
    {
        System::Log::Write(s_context, System::Log::MessageTypeID::Error,
                           "Failed to initialize render context. Debug draw is disabled!");
        return false;
    }
    if (!InitializeMembers())
    {
        System::Log::Write(s_context, System::Log::MessageTypeID::Error,
                           "Failed to initialize renderer. Debug draw is disabled!");
        return false;
    }
    if (!m_context.IsValid())
    {
        System::Log::Write(s_context, System::Log::MessageTypeID::Error, "Render interface is not initialized.");
        return false;
    }
    CreateSharedBuffer();
    m_initialized = true;
    return true;
}

void Renderer::Resize(System::Desktop::NativeWindow /*window*/, std::int32_t width, std::int32_t height)
{
    if (!m_initialized || !m_context.IsValid() || width <= 0 || height <= 0)
        return;
    glViewport(0, 0, width, height);
    m_screenSize = {static_cast<float>(width), static_cast<float>(height)};
    m_projection = System::Math::Matrix4::Orthographic(m_screenSize.width, m_screenSize.height);
    m_view = System::Math::Matrix4();

    const EntryPoints& gl = m_context.GetEntryPoints();
    gl.glBindBuffer(GL_UNIFORM_BUFFER, m_sharedBuffer);
    gl.glBufferSubData(GL_UNIFORM_BUFFER, s_projectionOffset, sizeof(m_projection), &m_projection);
    gl.glBufferSubData(GL_UNIFORM_BUFFER, s_viewOffset, sizeof(m_view), &m_view);
    gl.glBufferSubData(GL_UNIFORM_BUFFER, s_screenSizeOffset, sizeof(m_screenSize), &m_screenSize);
    gl.glBindBuffer(GL_UNIFORM_BUFFER, 0);
}

void Renderer::Render(System::Desktop::NativeWindow window)
{
    if (!m_initialized || !m_context.IsValid())
        return;
    if (window == System::Desktop::NativeWindow::None)
    {
        m_context.SkipFrame();
        return;
    }
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    m_polygonRenderer.Render(*this);
    m_quadRenderer.Render(*this);
    m_textureRenderer.Render(*this);
    m_lineRenderer.Render(*this);
    m_textRenderer.Render(*this);
    m_context.SwapBuffers(window);
}

void Renderer::Shutdown(System::Desktop::NativeWindow window)
{
    if (!m_initialized)
        return;
    m_quadRenderer.Shutdown(*this);
    m_textRenderer.Shutdown(*this);
    m_textureRenderer.Shutdown(*this);
    m_polygonRenderer.Shutdown(*this);
    m_lineRenderer.Shutdown(*this);
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

void Renderer::CreateSharedBuffer()
{
    const EntryPoints& gl = m_context.GetEntryPoints();
    gl.glGenBuffers(1, &m_sharedBuffer);
    gl.glBindBuffer(GL_UNIFORM_BUFFER, m_sharedBuffer);
    gl.glBufferData(GL_UNIFORM_BUFFER, s_sharedSize, nullptr, GL_STATIC_DRAW);
    gl.glBindBuffer(GL_UNIFORM_BUFFER, 0);
    gl.glBindBufferRange(GL_UNIFORM_BUFFER, s_sharedBinding, m_sharedBuffer, 0, s_sharedSize);

    const std::array<GLuint, 5> programs = {m_lineRenderer.GetProgram(), m_polygonRenderer.GetProgram(),
                                            m_textureRenderer.GetProgram(), m_textRenderer.GetProgram(),
                                            m_quadRenderer.GetProgram()};
    for (const GLuint program : programs)
        gl.glUniformBlockBinding(program, gl.glGetUniformBlockIndex(program, "Shared"), s_sharedBinding);
}

} // namespace Orvik::Graphics::Renderer
