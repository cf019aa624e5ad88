#include "Tests/Support/RecordingSurface.h"

#include "Tests/Support/GLRecorder.h"
#include "Tests/Support/RecordingEntryPoints.h"

#include <string_view>

namespace Orvik::Tests
{

Desktops::OpenGLCreation RecordingSurface::Create(Desktops::NativeWindow window, const char* className)
{
    GLRecorder& recorder = GLRecorder::GetInstance();
    recorder.Record("CreateContext", static_cast<std::uintptr_t>(window)).text = className;
    if (!recorder.contextCreates)
        return {": Failed to bind all required OpenGL methods.", {}};
    m_entryPoints = MakeRecordingEntryPoints();
    const std::string version = reinterpret_cast<const char*>(m_entryPoints.glGetString(GL_VERSION));
    recorder.Record("SetTitle").text = version;
    return {nullptr, version};
}

void RecordingSurface::Destroy(Desktops::NativeWindow window)
{
    GLRecorder::GetInstance().Record("DestroyContext", static_cast<std::uintptr_t>(window));
}

void RecordingSurface::SwapBuffers(Desktops::NativeWindow window)
{
    GLRecorder::GetInstance().Record("SwapBuffers", static_cast<std::uintptr_t>(window));
}

Desktops::OpenGLFunction RecordingSurface::FindFunction(const char* name) const
{
    const std::string_view wanted(name);
#define ORVIK_FIND_FUNCTION(Type, function)                                                                            \
    if (wanted == #function)                                                                                           \
        return reinterpret_cast<Desktops::OpenGLFunction>(m_entryPoints.function);
    ORVIK_FOR_EACH_ENTRY_POINT(ORVIK_FIND_FUNCTION)
    ORVIK_FOR_EACH_LIBRARY_FUNCTION(ORVIK_FIND_FUNCTION)
    ORVIK_FIND_FUNCTION(PFNGLGETACTIVEUNIFORMBLOCKIVPROC, glGetActiveUniformBlockiv)
#undef ORVIK_FIND_FUNCTION
    return nullptr;
}

} // namespace Orvik::Tests
