#include "Core/Graphics/Renderer/GLContext.h"

#include "Core/System/Log/LogSite.h"
#include "Desktops/Desktop.h"

#include <utility>

namespace Orvik::Graphics::Renderer
{
bool EntryPoints::IsComplete() const noexcept
{
    bool isComplete = true;
#define ORVIK_TEST_ENTRY_POINT(Type, name) isComplete = isComplete && name != nullptr;
    ORVIK_FOR_EACH_ENTRY_POINT(ORVIK_TEST_ENTRY_POINT)
#undef ORVIK_TEST_ENTRY_POINT
    return isComplete;
}

bool GLContext::Create(Desktops::NativeWindow window, const char* className, bool isDemanded)
{
    m_isDemanded = isDemanded;
    Destroy(window);
    m_version.clear();
    m_valid = Bind(window, className);
    if (m_valid)
        SetFixedState();
    return m_valid;
}

bool GLContext::Bind(Desktops::NativeWindow window, const char* className)
{
    m_surface = Desktops::GetDesktop().MakeOpenGLSurface();
    Desktops::OpenGLCreation creation = m_surface->Create(window, className);
    m_version = std::move(creation.version);
    if (creation.failure != nullptr)
    {
        Report(creation.failure);
        m_surface.reset();
        return false;
    }
    LoadEntryPoints();
    if (m_entryPoints.IsComplete())
        return true;
    Report(": Failed to bind all required OpenGL methods.");
    Destroy(window);
    return false;
}

void GLContext::LoadEntryPoints()
{
#define ORVIK_LOAD_ENTRY_POINT(Type, name) m_entryPoints.name = reinterpret_cast<Type>(m_surface->FindFunction(#name));
    ORVIK_FOR_EACH_ENTRY_POINT(ORVIK_LOAD_ENTRY_POINT)
    ORVIK_FOR_EACH_LIBRARY_FUNCTION(ORVIK_LOAD_ENTRY_POINT)
    ORVIK_LOAD_ENTRY_POINT(PFNGLGETACTIVEUNIFORMBLOCKIVPROC, glGetActiveUniformBlockiv)
#undef ORVIK_LOAD_ENTRY_POINT
}

void GLContext::Destroy(Desktops::NativeWindow window)
{
    if (!m_surface)
        return;
    m_surface->Destroy(window);
    m_surface.reset();
    m_valid = false;
}

void GLContext::SwapBuffers(Desktops::NativeWindow window)
{
    if (m_valid)
        m_surface->SwapBuffers(window);
}

void GLContext::SetFixedState() const
{
    m_entryPoints.glEnable(GL_DEPTH_TEST);
    m_entryPoints.glEnable(GL_CULL_FACE);
    m_entryPoints.glEnable(GL_BLEND);
    m_entryPoints.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    m_entryPoints.glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
    m_entryPoints.glClearDepth(1.0);
}

void GLContext::Report(const char* failure) const
{
    using System::Log::MessageTypeID;
    const MessageTypeID severity = m_isDemanded ? MessageTypeID::Error : MessageTypeID::Verbose;
    System::Log::Write(System::Log::s_graphics, severity, m_version.empty() ? "OpenGL" : m_version.c_str(), failure);
}

} // namespace Orvik::Graphics::Renderer
