#include "Core/Graphics/Renderer/GLContext.h"

#include "Core/Graphics/Renderer/GLRecorder.h"
#include "Core/Graphics/Renderer/RecordingEntryPoints_Null.h"

namespace Orvik::Graphics::Renderer
{

bool GLContext::CreatePlatform(System::Desktop::NativeWindow window, const char* className)
{
    GLRecorder& recorder = GLRecorder::GetInstance();
    recorder.Record("CreateContext", static_cast<std::uintptr_t>(window)).text = className;
    bool isBound = recorder.contextCreates;
    if (isBound)
    {
        m_handle = &recorder;
        m_version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
        m_entryPoints = MakeRecordingEntryPoints();
        isBound = m_entryPoints.IsComplete();
        recorder.Record("SetTitle").text = m_version;
    }
    if (isBound)
        return true;
    Report(": Failed to bind all required OpenGL methods.");
    if (m_handle != nullptr)
        DestroyPlatform(window);
    m_handle = nullptr;
    return false;
}

void GLContext::DestroyPlatform(System::Desktop::NativeWindow window)
{
    GLRecorder::GetInstance().Record("DestroyContext", static_cast<std::uintptr_t>(window));
}

void GLContext::SwapBuffersPlatform(System::Desktop::NativeWindow window)
{
    GLRecorder::GetInstance().Record("SwapBuffers", static_cast<std::uintptr_t>(window));
}

} // namespace Orvik::Graphics::Renderer
