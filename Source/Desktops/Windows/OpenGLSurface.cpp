#include "Desktops/Windows/OpenGLSurface.h"

#include "Core/System/Text/Unicode.h"
#include "Desktops/OpenGL.h"
#include "Systems/Windows/SystemCall.h"
#include "Systems/Windows/WindowsHeaders.h"

#include <GL/wglext.h>
#include <array>
#include <utility>

namespace Orvik::Desktops::Windows
{
namespace
{

using Systems::SystemCall;

HWND ToHwnd(NativeWindow window)
{
    return reinterpret_cast<HWND>(window);
}

template <typename Function>
Function LoadFunction(const char* name)
{
    // Through a plain pointer, because the system's type isn't a type of a function.
    return reinterpret_cast<Function>(reinterpret_cast<void*>(SystemCall<&::wglGetProcAddress>(name)));
}

/// Only a context can say how to choose a context. This one does that, on a window of its own, since a window's pixel
/// format can't be changed. Without the window there is no context either. It ends with the object, if not before.
class DummyContext
{
public:
    explicit DummyContext(const char* className);
    DummyContext(const DummyContext&) = delete;
    DummyContext& operator=(const DummyContext&) = delete;
    ~DummyContext() { Destroy(); }
    void Destroy();

private:
    void ChooseFormat() const;

    HWND m_window = nullptr;
    HDC m_deviceContext = nullptr;
    HGLRC m_context = nullptr;
};

DummyContext::DummyContext(const char* className)
{
    m_window = SystemCall<&::CreateWindowExW>(0, System::Text::ToWide(className).c_str(), L"GLContext",
                                              WS_CLIPSIBLINGS | WS_CLIPCHILDREN, 0, 0, 1, 1, nullptr, nullptr,
                                              GetModuleHandleW(nullptr), nullptr);
    if (m_window == nullptr)
        return; // without a window, this would be the screen's device context
    m_deviceContext = SystemCall<&::GetDC>(m_window);
    ChooseFormat();
    m_context = SystemCall<&::wglCreateContext>(m_deviceContext);
    SystemCall<&::wglMakeCurrent>(m_deviceContext, m_context);
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
    SystemCall<&::SetPixelFormat>(m_deviceContext, SystemCall<&::ChoosePixelFormat>(m_deviceContext, &format), &format);
}

void DummyContext::Destroy()
{
    if (m_window == nullptr)
        return;
    SystemCall<&::wglMakeCurrent>(nullptr, nullptr);
    SystemCall<&::wglDeleteContext>(m_context);
    SystemCall<&::ReleaseDC>(m_window, m_deviceContext);
    SystemCall<&::DestroyWindow>(m_window);
    m_window = nullptr;
}

/// Sets the window's pixel format. False if the driver has none that fits.
bool SetFormat(PFNWGLCHOOSEPIXELFORMATARBPROC choosePixelFormat, HDC deviceContext)
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
    SystemCall<&::DescribePixelFormat>(deviceContext, format, sizeof(descriptor), &descriptor);
    SystemCall<&::SetPixelFormat>(deviceContext, format, &descriptor);
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

OpenGLCreation OpenGLSurface::Create(NativeWindow window, const char* className)
{
    HDC const deviceContext = SystemCall<&::GetDC>(ToHwnd(window));
    DummyContext dummy(className);
    std::string version;
    if (const GLubyte* const text = glGetString(GL_VERSION))
        version = reinterpret_cast<const char*>(text);

    const auto choosePixelFormat = LoadFunction<PFNWGLCHOOSEPIXELFORMATARBPROC>("wglChoosePixelFormatARB");
    const auto createContextAttributes = LoadFunction<PFNWGLCREATECONTEXTATTRIBSARBPROC>("wglCreateContextAttribsARB");
    if (choosePixelFormat == nullptr || createContextAttributes == nullptr)
        return {": Missing wglChoosePixelFormatARB and wglCreateContextAttribsARB.", std::move(version)};
    if (!SetFormat(choosePixelFormat, deviceContext))
        return {": Call to wglChoosePixelFormatARB failed.", std::move(version)};
    m_context = CreateCoreContext(createContextAttributes, deviceContext);
    dummy.Destroy();

    const bool isCurrent =
        m_context != nullptr && SystemCall<&::wglMakeCurrent>(deviceContext, static_cast<HGLRC>(m_context)) != FALSE;
    if (!isCurrent && m_context != nullptr)
        SystemCall<&::wglDeleteContext>(static_cast<HGLRC>(m_context));
    SystemCall<&::ReleaseDC>(ToHwnd(window), deviceContext);
    SystemCall<&::SetWindowTextW>(ToHwnd(window), System::Text::ToWide(version).c_str());
    return {isCurrent ? nullptr : ": Failed to bind all required OpenGL methods.", std::move(version)};
}

void OpenGLSurface::Destroy(NativeWindow /*window*/)
{
    SystemCall<&::wglMakeCurrent>(nullptr, nullptr);
    SystemCall<&::wglDeleteContext>(static_cast<HGLRC>(m_context));
}

void OpenGLSurface::SwapBuffers(NativeWindow window)
{
    HDC const deviceContext = SystemCall<&::GetDC>(ToHwnd(window));
    SystemCall<&::SwapBuffers>(deviceContext);
    SystemCall<&::ReleaseDC>(ToHwnd(window), deviceContext);
}

OpenGLFunction OpenGLSurface::FindFunction(const char* name) const
{
    OpenGLFunction const function = FindLibraryFunction(name);
    return function != nullptr ? function : LoadFunction<OpenGLFunction>(name);
}

} // namespace Orvik::Desktops::Windows
