#include "Core/Graphics/Renderer/GLContext.h"

#include "Core/System/Desktop/Window.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/ReplacedCalls_Windows.h"

#include <GL/wglext.h>
#include <array>
#include <cstdint>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace Orvik::Graphics::Renderer
{
namespace
{

using System::Desktop::Window;
using System::Desktop::WindowType;
using testing::ElementsAre;

std::map<std::string, int> s_counts; ///< calls of what is acquired and released
std::string s_missing;               ///< the function that the driver lacks
bool s_bindsCoreContext = true;

// clang-format off
const std::vector<int> s_formatAttributes = {
    WGL_DRAW_TO_WINDOW_ARB, TRUE,
    WGL_SUPPORT_OPENGL_ARB, TRUE,
    WGL_DOUBLE_BUFFER_ARB, TRUE,
    WGL_PIXEL_TYPE_ARB, WGL_TYPE_RGBA_ARB,
    WGL_ACCELERATION_ARB, WGL_FULL_ACCELERATION_ARB,
    WGL_COLOR_BITS_ARB, 32,
    WGL_ALPHA_BITS_ARB, 8,
    WGL_DEPTH_BITS_ARB, 24,
    WGL_STENCIL_BITS_ARB, 8,
    WGL_SAMPLE_BUFFERS_ARB, TRUE,
    WGL_SAMPLES_ARB, 4,
};
// clang-format on

int CountDummyWindows()
{
    int count = 0;
    for (HWND window = FindWindowExW(nullptr, nullptr, nullptr, L"GLContext"); window != nullptr;
         window = FindWindowExW(nullptr, window, nullptr, L"GLContext"))
        ++count;
    return count;
}

PROC WINAPI LoadAllBut(LPCSTR name)
{
    return s_missing == name ? nullptr : wglGetProcAddress(name);
}

BOOL WINAPI RefuseFormats(HDC, const int*, const FLOAT*, UINT, int*, UINT*)
{
    return FALSE;
}

BOOL WINAPI FindNoFormats(HDC, const int*, const FLOAT*, UINT, int*, UINT* count)
{
    *count = 0;
    return TRUE;
}

HGLRC WINAPI RefuseContext(HDC, HGLRC, const int*)
{
    return nullptr;
}

/// What was asked for: of the dummy window, of its pixel format, and by the two lists of attributes.
struct Requests
{
    std::wstring className;
    std::wstring title;
    std::vector<std::int64_t> window; ///< extended style, style, x, y, width, height
    PIXELFORMATDESCRIPTOR format = {};
    std::vector<int> formatAttributes;
    std::vector<int> contextAttributes;
};
Requests s_requests;

HWND WINAPI RecordWindow(DWORD extendedStyle, LPCWSTR className, LPCWSTR title, DWORD style, int x, int y, int width,
                         int height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID parameter)
{
    s_requests.className = className;
    s_requests.title = title;
    s_requests.window = {extendedStyle, style, x, y, width, height};
    return CreateWindowExW(extendedStyle, className, title, style, x, y, width, height, parent, menu, instance,
                           parameter);
}

int WINAPI RecordFormat(HDC deviceContext, const PIXELFORMATDESCRIPTOR* format)
{
    s_requests.format = *format;
    return ChoosePixelFormat(deviceContext, format);
}

/// The pairs up to the zero that ends them.
std::vector<int> CopyAttributes(const int* attributes)
{
    std::vector<int> copy;
    for (; *attributes != 0; attributes += 2)
        copy.insert(copy.end(), attributes, attributes + 2);
    return copy;
}

BOOL WINAPI RecordFormatAttributes(HDC deviceContext, const int* attributes, const FLOAT* floats, UINT maximum,
                                   int* formats, UINT* count)
{
    s_requests.formatAttributes = CopyAttributes(attributes);
    const auto choose = reinterpret_cast<PFNWGLCHOOSEPIXELFORMATARBPROC>(
        reinterpret_cast<void*>(wglGetProcAddress("wglChoosePixelFormatARB")));
    return choose(deviceContext, attributes, floats, maximum, formats, count);
}

HGLRC WINAPI RecordContextAttributes(HDC deviceContext, HGLRC shared, const int* attributes)
{
    s_requests.contextAttributes = CopyAttributes(attributes);
    const auto create = reinterpret_cast<PFNWGLCREATECONTEXTATTRIBSARBPROC>(
        reinterpret_cast<void*>(wglGetProcAddress("wglCreateContextAttribsARB")));
    return create(deviceContext, shared, attributes);
}

PROC WINAPI LoadRecorders(LPCSTR name)
{
    if (std::strcmp(name, "wglChoosePixelFormatARB") == 0)
        return reinterpret_cast<PROC>(reinterpret_cast<void*>(&RecordFormatAttributes));
    if (std::strcmp(name, "wglCreateContextAttribsARB") == 0)
        return reinterpret_cast<PROC>(reinterpret_cast<void*>(&RecordContextAttributes));
    return wglGetProcAddress(name);
}

template <auto Replacement>
PROC WINAPI LoadReplacement(LPCSTR name)
{
    constexpr bool isContext = std::is_same_v<decltype(Replacement), decltype(&RefuseContext)>;
    if (std::strcmp(name, isContext ? "wglCreateContextAttribsARB" : "wglChoosePixelFormatARB") == 0)
        return reinterpret_cast<PROC>(reinterpret_cast<void*>(Replacement));
    return wglGetProcAddress(name);
}

/// Counts what is acquired and released, and does it.
void CountCalls(Tests::ReplacedCalls& calls)
{
    calls.Of<&::GetDC>() = [](HWND window)
    {
        ++s_counts["GetDC"];
        return GetDC(window);
    };
    calls.Of<&::ReleaseDC>() = [](HWND window, HDC context)
    {
        ++s_counts["ReleaseDC"];
        return ReleaseDC(window, context);
    };
    calls.Of<&::wglCreateContext>() = [](HDC context)
    {
        ++s_counts["CreateContext"];
        return wglCreateContext(context);
    };
    calls.Of<&::wglDeleteContext>() = [](HGLRC context) -> BOOL
    {
        ++s_counts["DeleteContext"];
        return wglDeleteContext(context);
    };
    calls.Of<&::DestroyWindow>() = [](HWND window) -> BOOL
    {
        ++s_counts["DestroyWindow"];
        return DestroyWindow(window);
    };
}

class GLContextWindows : public testing::Test
{
protected:
    GLContextWindows()
    {
        s_counts.clear();
        s_missing.clear();
        s_requests = {};
        CountCalls(m_calls);
        EXPECT_TRUE(m_window.Create());
    }

    [[nodiscard]] std::wstring GetTitle() const
    {
        std::array<wchar_t, 256> title = {};
        GetWindowTextW(reinterpret_cast<HWND>(m_window.GetNativeWindow()), title.data(), 256);
        return title.data();
    }

    /// Fails with that line, which begins with the version, and leaves no window.
    void ExpectFailure(const char* text)
    {
        const std::string line = CreateAndGetLine();
        EXPECT_FALSE(m_context.GetVersion().empty());
        EXPECT_EQ(line, "Graphics Error: " + m_context.GetVersion() + text);
        EXPECT_EQ(s_counts["DestroyWindow"], 1);
    }

    /// The line of a creation that fails and leaves no window.
    std::string CreateAndGetLine()
    {
        const Tests::LogRecorder recorder;
        EXPECT_FALSE(m_context.Create(m_window.GetNativeWindow(), m_window.GetWindowClassName()));
        EXPECT_FALSE(m_context.IsValid());
        EXPECT_EQ(CountDummyWindows(), 0);
        EXPECT_EQ(wglGetCurrentContext(), nullptr);
        EXPECT_EQ(recorder.GetLines().size(), 1U);
        return recorder.GetLines().front();
    }

    Window m_window{nullptr, "Orvik::GLTest", {0, 0}, {64, 48}, WindowType::Overlay};
    GLContext m_context;
    Tests::ReplacedCalls m_calls;
};

/// Whether this system has such a pixel format, asked for without the units that are tested.
bool HasFormat()
{
    HWND const window = CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    HDC const device = GetDC(window);
    PIXELFORMATDESCRIPTOR plain = {};
    plain.nSize = sizeof(plain);
    plain.nVersion = 1;
    plain.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    plain.cColorBits = 32;
    SetPixelFormat(device, ChoosePixelFormat(device, &plain), &plain);
    HGLRC const context = wglCreateContext(device);
    wglMakeCurrent(device, context);
    const auto choose = reinterpret_cast<PFNWGLCHOOSEPIXELFORMATARBPROC>(
        reinterpret_cast<void*>(wglGetProcAddress("wglChoosePixelFormatARB")));
    std::vector<int> attributes = s_formatAttributes;
    attributes.push_back(0);
    int format = 0;
    UINT count = 0;
    const bool isFound = choose != nullptr && choose(device, attributes.data(), nullptr, 1, &format, &count) != 0;
    wglMakeCurrent(nullptr, nullptr);
    wglDeleteContext(context);
    ReleaseDC(window, device);
    DestroyWindow(window);
    return isFound && count > 0;
}

/// Where the driver has all that is asked for. Wine of Debian 13 has no accelerated format on a virtual display.
class AcceleratedGLContextWindows : public GLContextWindows
{
protected:
    void SetUp() override
    {
        static const bool s_hasFormat = HasFormat();
        if (!s_hasFormat)
            GTEST_SKIP() << "This system has no accelerated pixel format with four samples.";
    }
};

GLint GetInteger(GLenum name)
{
    GLint value = -1;
    glGetIntegerv(name, &value);
    return value;
}

TEST_F(AcceleratedGLContextWindows, GivesACoreContextWithFourSamples)
{
    ASSERT_TRUE(m_context.Create(m_window.GetNativeWindow(), m_window.GetWindowClassName()));
    EXPECT_TRUE(m_context.IsValid());
    EXPECT_TRUE(m_context.GetEntryPoints().IsComplete());
    EXPECT_EQ(GetInteger(GL_SAMPLES), 4);
    EXPECT_EQ(GetInteger(GL_CONTEXT_PROFILE_MASK), GL_CONTEXT_CORE_PROFILE_BIT);
    EXPECT_GE(GetInteger(GL_MAJOR_VERSION) * 10 + GetInteger(GL_MINOR_VERSION), 33);
    m_context.SwapBuffers(m_window.GetNativeWindow());
    m_context.Destroy(m_window.GetNativeWindow());
    EXPECT_FALSE(m_context.IsValid());
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
}

TEST_F(AcceleratedGLContextWindows, TheTitleIsTheVersionAndNothingIsLeft)
{
    ASSERT_TRUE(m_context.Create(m_window.GetNativeWindow(), m_window.GetWindowClassName()));
    EXPECT_FALSE(m_context.GetVersion().empty());
    EXPECT_EQ(GetTitle(), std::wstring(m_context.GetVersion().begin(), m_context.GetVersion().end()));
    EXPECT_EQ(CountDummyWindows(), 0);
    EXPECT_EQ(s_counts["GetDC"], 2);
    EXPECT_EQ(s_counts["ReleaseDC"], 2);
    EXPECT_EQ(s_counts["CreateContext"], 1);
    EXPECT_EQ(s_counts["DeleteContext"], 1);
    m_context.Destroy(m_window.GetNativeWindow());
    EXPECT_EQ(s_counts["DeleteContext"], 2);
}

TEST_F(AcceleratedGLContextWindows, TheDummyIsAPixelOfTheWindowsClassInAPlainFormat)
{
    m_calls.Of<&::CreateWindowExW>() = &RecordWindow;
    m_calls.Of<&::ChoosePixelFormat>() = &RecordFormat;
    ASSERT_TRUE(m_context.Create(m_window.GetNativeWindow(), m_window.GetWindowClassName()));
    m_context.Destroy(m_window.GetNativeWindow());
    EXPECT_EQ(s_requests.className, L"Orvik::GLTest");
    EXPECT_EQ(s_requests.title, L"GLContext");
    EXPECT_THAT(s_requests.window, ElementsAre(0, WS_CLIPSIBLINGS | WS_CLIPCHILDREN, 0, 0, 1, 1));
    PIXELFORMATDESCRIPTOR expected = {};
    expected.nSize = 40;
    expected.nVersion = 1;
    expected.dwFlags = 0x8025; // to a window, by OpenGL, double-buffered, composed with the desktop
    expected.cColorBits = 32;
    expected.cAlphaBits = 8;
    expected.cDepthBits = 24;
    EXPECT_EQ(std::memcmp(&s_requests.format, &expected, sizeof(expected)), 0);
}

TEST_F(AcceleratedGLContextWindows, TheFormatAndTheContextAreAskedForInFull)
{
    m_calls.Of<&::wglGetProcAddress>() = &LoadRecorders;
    ASSERT_TRUE(m_context.Create(m_window.GetNativeWindow(), m_window.GetWindowClassName()));
    m_context.Destroy(m_window.GetNativeWindow());
    EXPECT_EQ(s_requests.formatAttributes, s_formatAttributes);
    EXPECT_THAT(s_requests.contextAttributes,
                ElementsAre(WGL_CONTEXT_MAJOR_VERSION_ARB, 3, WGL_CONTEXT_MINOR_VERSION_ARB, 3,
                            WGL_CONTEXT_PROFILE_MASK_ARB, WGL_CONTEXT_CORE_PROFILE_BIT_ARB));
}

TEST_F(GLContextWindows, WithoutADummyWindowNothingElseIsTakenForIt)
{
    m_calls.Of<&::CreateWindowExW>() = [](DWORD, LPCWSTR, LPCWSTR, DWORD, int, int, int, int, HWND, HMENU, HINSTANCE,
                                          LPVOID) -> HWND { return nullptr; };
    EXPECT_EQ(CreateAndGetLine(),
              "Graphics Error: OpenGL: Missing wglChoosePixelFormatARB and wglCreateContextAttribsARB.");
    EXPECT_EQ(s_counts["GetDC"], 1) << "the real window's";
    EXPECT_EQ(s_counts["ReleaseDC"], 0) << "the real window's stays";
    EXPECT_EQ(s_counts["CreateContext"], 0);
    EXPECT_EQ(s_counts["DeleteContext"], 0);
    EXPECT_EQ(s_counts["DestroyWindow"], 0);
}

TEST_F(GLContextWindows, WithoutADummyContextTheVersionIsUnknown)
{
    m_calls.Of<&::wglCreateContext>() = [](HDC) -> HGLRC { return nullptr; };
    EXPECT_EQ(CreateAndGetLine(),
              "Graphics Error: OpenGL: Missing wglChoosePixelFormatARB and wglCreateContextAttribsARB.");
    EXPECT_EQ(s_counts["GetDC"], 2);
    EXPECT_EQ(s_counts["ReleaseDC"], 1) << "the real window's stays";
    EXPECT_EQ(s_counts["DestroyWindow"], 1);
}

TEST_F(GLContextWindows, ADriverWithoutAnExtensionFunctionIsRefused)
{
    for (const char* name : {"wglChoosePixelFormatARB", "wglCreateContextAttribsARB"})
    {
        s_counts.clear();
        s_missing = name;
        m_calls.Of<&::wglGetProcAddress>() = &LoadAllBut;
        ExpectFailure(": Missing wglChoosePixelFormatARB and wglCreateContextAttribsARB.");
        EXPECT_EQ(s_counts["DeleteContext"], 1);
        EXPECT_EQ(s_counts["ReleaseDC"], 1) << "the real window's stays";
        EXPECT_EQ(GetTitle(), L"") << "the title comes with the version";
    }
}

TEST_F(GLContextWindows, ADriverWithoutTheFormatIsRefused)
{
    for (const auto getProcAddress : {&LoadReplacement<&RefuseFormats>, &LoadReplacement<&FindNoFormats>})
    {
        s_counts.clear();
        m_calls.Of<&::wglGetProcAddress>() = getProcAddress;
        ExpectFailure(": Call to wglChoosePixelFormatARB failed.");
        EXPECT_EQ(s_counts["DeleteContext"], 1);
        EXPECT_EQ(s_counts["ReleaseDC"], 1) << "the real window's stays";
    }
}

TEST_F(AcceleratedGLContextWindows, ADriverWithoutTheContextIsRefused)
{
    m_calls.Of<&::wglGetProcAddress>() = &LoadReplacement<&RefuseContext>;
    ExpectFailure(": Failed to bind all required OpenGL methods.");
    EXPECT_EQ(s_counts["DeleteContext"], 1);
    EXPECT_EQ(s_counts["ReleaseDC"], 2);
    EXPECT_EQ(GetTitle(), std::wstring(m_context.GetVersion().begin(), m_context.GetVersion().end()));
}

TEST_F(AcceleratedGLContextWindows, ADriverThatLacksOneEntryPointIsRefused)
{
    s_missing = "glCompressedTexImage2D";
    m_calls.Of<&::wglGetProcAddress>() = &LoadAllBut;
    ExpectFailure(": Failed to bind all required OpenGL methods.");
    EXPECT_EQ(s_counts["DeleteContext"], 2);
    EXPECT_EQ(s_counts["ReleaseDC"], 2);
}

TEST_F(AcceleratedGLContextWindows, AContextThatCannotBeBoundIsRefused)
{
    // The dummy's is bound, and released; the next is the real one.
    s_bindsCoreContext = true;
    m_calls.Of<&::wglMakeCurrent>() = [](HDC deviceContext, HGLRC context) -> BOOL
    {
        if (context == nullptr)
            s_bindsCoreContext = false;
        if (context != nullptr && !s_bindsCoreContext)
            return FALSE;
        return wglMakeCurrent(deviceContext, context);
    };
    ExpectFailure(": Failed to bind all required OpenGL methods.");
    EXPECT_EQ(s_counts["DeleteContext"], 2);
    EXPECT_EQ(s_counts["ReleaseDC"], 2);
}

} // namespace
} // namespace Orvik::Graphics::Renderer
