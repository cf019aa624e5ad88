#include "Core/Graphics/Renderer/GLContext.h"

#include "Core/System/Log/Site/LogSite.h"

namespace Orvik::Graphics::Renderer
{
namespace
{

constexpr System::Log::Context s_context{System::Log::StreamID::Graphics};

} // namespace

bool EntryPoints::IsComplete() const noexcept
{
    bool isComplete = true;
#define ORVIK_TEST_ENTRY_POINT(Type, name) isComplete = isComplete && name != nullptr;
    ORVIK_FOR_EACH_ENTRY_POINT(ORVIK_TEST_ENTRY_POINT)
#undef ORVIK_TEST_ENTRY_POINT
    return isComplete;
}

bool GLContext::Create(System::Desktop::NativeWindow window, const char* className, bool isDemanded)
{
    m_isDemanded = isDemanded;
    Destroy(window);
    m_version.clear();
    m_valid = CreatePlatform(window, className);
    if (m_valid)
        SetFixedState();
    return m_valid;
}

void GLContext::Destroy(System::Desktop::NativeWindow window)
{
    if (m_handle == nullptr)
        return;
    DestroyPlatform(window);
    m_handle = nullptr;
    m_surface = nullptr;
    m_valid = false;
}

void GLContext::SwapBuffers(System::Desktop::NativeWindow window)
{
    if (m_valid)
        SwapBuffersPlatform(window);
}

void GLContext::SetFixedState()
{
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
    glClearDepth(1.0);
}

void GLContext::Report(const char* failure) const
{
    using System::Log::MessageTypeID;
    const MessageTypeID severity = m_isDemanded ? MessageTypeID::Error : MessageTypeID::Verbose;
    System::Log::Write(s_context, severity, m_version.empty() ? "OpenGL" : m_version.c_str(), failure);
}

} // namespace Orvik::Graphics::Renderer
