#include "Core/Graphics/Renderer/GLContext.h"

#include "Core/Graphics/Renderer/WglCalls_Windows.h"
#include "Core/System/Text/Unicode.h"

#include <array>

namespace Orvik::Graphics::Renderer
{
namespace
{

HWND ToHwnd(System::Desktop::NativeWindow window)
{
    return reinterpret_cast<HWND>(window);
}

template <typename Function>
Function LoadFunction(const WglCalls& calls, const char* name)
{
    // By way of a plain pointer: the system's type of the function is no function's.
    return reinterpret_cast<Function>(reinterpret_cast<void*>(calls.getProcAddress(name)));
}

EntryPoints LoadEntryPoints(const WglCalls& calls)
{
    EntryPoints entryPoints;
#define ORVIK_LOAD_ENTRY_POINT(Type, name) entryPoints.name = LoadFunction<Type>(calls, #name);
    ORVIK_FOR_EACH_ENTRY_POINT(ORVIK_LOAD_ENTRY_POINT)
#undef ORVIK_LOAD_ENTRY_POINT
    entryPoints.glGetActiveUniformBlockiv =
        LoadFunction<PFNGLGETACTIVEUNIFORMBLOCKIVPROC>(calls, "glGetActiveUniformBlockiv");
    return entryPoints;
}

/// What the context is chosen by can only be asked of a context: this one, on a window of its own, since a window's
/// pixel format is for good. Without the window there is no context either. Gone with the object, unless that was
/// before.
class DummyContext
{
public:
    DummyContext(const WglCalls& calls, const char* className);
    DummyContext(const DummyContext&) = delete;
    DummyContext& operator=(const DummyContext&) = delete;
    ~DummyContext() { Destroy(); }
    void Destroy();

private:
    void ChooseFormat() const;

    const WglCalls& m_calls;
    HWND m_window = nullptr;
    HDC m_deviceContext = nullptr;
    HGLRC m_context = nullptr;
};

DummyContext::DummyContext(const WglCalls& calls, const char* className) : m_calls(calls)
{
    m_window =
        calls.createWindow(0, System::Text::ToWide(className).c_str(), L"GLContext", WS_CLIPSIBLINGS | WS_CLIPCHILDREN,
                           0, 0, 1, 1, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (m_window == nullptr)
        return; // no window's device context is the screen's
    m_deviceContext = calls.getDC(m_window);
    ChooseFormat();
    m_context = calls.createContext(m_deviceContext);
    calls.makeCurrent(m_deviceContext, m_context);
}

void DummyContext::ChooseFormat() const
{
    PIXELFORMATDESCRIPTOR format = {};
    format.nSize = sizeof(format);
    format.nVersion = 1;
    format.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER | PFD_SUPPORT_COMPOSITION;
    format.iPixelType = PFD_TYPE_RGBA;
    format.cColorBits = 32;
    format.cAlphaBits = 8;
    format.cDepthBits = 24;
    m_calls.setPixelFormat(m_deviceContext, m_calls.choosePixelFormat(m_deviceContext, &format), &format);
}

void DummyContext::Destroy()
{
    if (m_window == nullptr)
        return;
    m_calls.makeCurrent(nullptr, nullptr);
    m_calls.deleteContext(m_context);
    m_calls.releaseDC(m_window, m_deviceContext);
    m_calls.destroyWindow(m_window);
    m_window = nullptr;
}

/// Gives the window's device context the pixel format that everything is drawn with. False if the driver has none.
bool SetFormat(const WglCalls& calls, PFNWGLCHOOSEPIXELFORMATARBPROC choosePixelFormat, HDC deviceContext)
{
    // clang-format off
    constexpr std::array<int, 23> attributes = {
        WGL_DRAW_TO_WINDOW_ARB, 1,
        WGL_SUPPORT_OPENGL_ARB, 1,
        WGL_DOUBLE_BUFFER_ARB, 1,
        WGL_PIXEL_TYPE_ARB, WGL_TYPE_RGBA_ARB,
        WGL_ACCELERATION_ARB, WGL_FULL_ACCELERATION_ARB,
        WGL_COLOR_BITS_ARB, 32,
        WGL_ALPHA_BITS_ARB, 8,
        WGL_DEPTH_BITS_ARB, 24,
        WGL_STENCIL_BITS_ARB, 8,
        WGL_SAMPLE_BUFFERS_ARB, 1,
        WGL_SAMPLES_ARB, 4,
        0,
    };
    // clang-format on
    int format = 0;
    UINT count = 0;
    if (choosePixelFormat(deviceContext, attributes.data(), nullptr, 1, &format, &count) == FALSE || count == 0)
        return false;
    PIXELFORMATDESCRIPTOR descriptor = {};
    calls.describePixelFormat(deviceContext, format, sizeof(descriptor), &descriptor);
    calls.setPixelFormat(deviceContext, format, &descriptor);
    return true;
}

HGLRC CreateCoreContext(PFNWGLCREATECONTEXTATTRIBSARBPROC createContextAttributes, HDC deviceContext)
{
    // clang-format off
    constexpr std::array<int, 7> attributes = {
        WGL_CONTEXT_MAJOR_VERSION_ARB, 3,
        WGL_CONTEXT_MINOR_VERSION_ARB, 3,
        WGL_CONTEXT_PROFILE_MASK_ARB, WGL_CONTEXT_CORE_PROFILE_BIT_ARB,
        0,
    };
    // clang-format on
    return createContextAttributes(deviceContext, nullptr, attributes.data());
}

} // namespace

bool GLContext::CreatePlatform(System::Desktop::NativeWindow window, const char* className)
{
    const WglCalls& calls = GetWglCalls();
    HDC const deviceContext = calls.getDC(ToHwnd(window));
    DummyContext dummy(calls, className);
    if (const GLubyte* const version = glGetString(GL_VERSION))
        m_version = reinterpret_cast<const char*>(version);

    const auto choosePixelFormat = LoadFunction<PFNWGLCHOOSEPIXELFORMATARBPROC>(calls, "wglChoosePixelFormatARB");
    const auto createContextAttributes =
        LoadFunction<PFNWGLCREATECONTEXTATTRIBSARBPROC>(calls, "wglCreateContextAttribsARB");
    if (choosePixelFormat == nullptr || createContextAttributes == nullptr)
    {
        Report(": Missing wglChoosePixelFormatARB and wglCreateContextAttribsARB.");
        return false;
    }
    if (!SetFormat(calls, choosePixelFormat, deviceContext))
    {
        Report(": Call to wglChoosePixelFormatARB failed.");
        return false;
    }
    HGLRC const context = CreateCoreContext(createContextAttributes, deviceContext);
    dummy.Destroy();

    m_handle = context;
    bool isBound = context != nullptr && calls.makeCurrent(deviceContext, context) != FALSE;
    if (isBound)
    {
        m_entryPoints = LoadEntryPoints(calls);
        isBound = m_entryPoints.IsComplete();
    }
    if (!isBound)
    {
        Report(": Failed to bind all required OpenGL methods.");
        if (context != nullptr)
            calls.deleteContext(context);
        m_handle = nullptr;
    }
    calls.releaseDC(ToHwnd(window), deviceContext);
    calls.setWindowText(ToHwnd(window), System::Text::ToWide(m_version).c_str());
    return isBound;
}

void GLContext::DestroyPlatform(System::Desktop::NativeWindow /*window*/)
{
    const WglCalls& calls = GetWglCalls();
    calls.makeCurrent(nullptr, nullptr);
    calls.deleteContext(static_cast<HGLRC>(m_handle));
}

void GLContext::SwapBuffersPlatform(System::Desktop::NativeWindow window)
{
    const WglCalls& calls = GetWglCalls();
    HDC const deviceContext = calls.getDC(ToHwnd(window));
    calls.swapBuffers(deviceContext);
    calls.releaseDC(ToHwnd(window), deviceContext);
}

} // namespace Orvik::Graphics::Renderer
