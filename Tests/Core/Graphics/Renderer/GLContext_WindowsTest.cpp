#include "Core/Graphics/Renderer/GLContext.h"

#include "Core/Graphics/Renderer/WglCalls_Windows.h"
#include "Core/System/Desktop/Window.h"
#include "Tests/Support/LogRecorder.h"

#include <array>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>

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

template <auto Replacement>
PROC WINAPI LoadReplacement(LPCSTR name)
{
    constexpr bool isContext = std::is_same_v<decltype(Replacement), decltype(&RefuseContext)>;
    if (std::strcmp(name, isContext ? "wglCreateContextAttribsARB" : "wglChoosePixelFormatARB") == 0)
        return reinterpret_cast<PROC>(reinterpret_cast<void*>(Replacement));
    return wglGetProcAddress(name);
}

/// Counts what is acquired and released, and does it.
WglCalls MakeCountingCalls()
{
    WglCalls calls;
    calls.getDC = [](HWND window)
    {
        ++s_counts["GetDC"];
        return GetDC(window);
    };
    calls.releaseDC = [](HWND window, HDC context)
    {
        ++s_counts["ReleaseDC"];
        return ReleaseDC(window, context);
    };
    calls.createContext = [](HDC context)
    {
        ++s_counts["CreateContext"];
        return wglCreateContext(context);
    };
    calls.deleteContext = [](HGLRC context) -> BOOL
    {
        ++s_counts["DeleteContext"];
        return wglDeleteContext(context);
    };
    calls.destroyWindow = [](HWND window) -> BOOL
    {
        ++s_counts["DestroyWindow"];
        return DestroyWindow(window);
    };
    return calls;
}

class GLContextWindows : public testing::Test
{
protected:
    GLContextWindows()
    {
        s_counts.clear();
        s_missing.clear();
        GetWglCalls() = MakeCountingCalls();
        EXPECT_TRUE(m_window.Create());
    }
    ~GLContextWindows() override { GetWglCalls() = {}; }

    [[nodiscard]] std::wstring GetTitle() const
    {
        std::array<wchar_t, 256> title = {};
        GetWindowTextW(reinterpret_cast<HWND>(m_window.GetNativeWindow()), title.data(), 256);
        return title.data();
    }

    /// Fails with that line and leaves no window.
    void ExpectFailure(const char* text)
    {
        const Tests::LogRecorder recorder;
        EXPECT_FALSE(m_context.Create(m_window.GetNativeWindow(), m_window.GetWindowClassName()));
        EXPECT_FALSE(m_context.IsValid());
        EXPECT_THAT(recorder.GetLines(), ElementsAre("Graphics Error: " + m_context.GetVersion() + text));
        EXPECT_EQ(CountDummyWindows(), 0);
        EXPECT_EQ(s_counts["DestroyWindow"], 1);
        EXPECT_EQ(wglGetCurrentContext(), nullptr);
    }

    Window m_window{nullptr, "Orvik::GLTest", {0, 0}, {64, 48}, WindowType::Overlay};
    GLContext m_context;
};

GLint GetInteger(GLenum name)
{
    GLint value = -1;
    glGetIntegerv(name, &value);
    return value;
}

TEST_F(GLContextWindows, GivesACoreContextWithFourSamples)
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

TEST_F(GLContextWindows, TheTitleIsTheVersionAndNothingIsLeft)
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

TEST_F(GLContextWindows, ADriverWithoutAnExtensionFunctionIsRefused)
{
    for (const char* name : {"wglChoosePixelFormatARB", "wglCreateContextAttribsARB"})
    {
        s_counts.clear();
        s_missing = name;
        GetWglCalls().getProcAddress = &LoadAllBut;
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
        GetWglCalls().getProcAddress = getProcAddress;
        ExpectFailure(": Call to wglChoosePixelFormatARB failed.");
        EXPECT_EQ(s_counts["DeleteContext"], 1);
        EXPECT_EQ(s_counts["ReleaseDC"], 1) << "the real window's stays";
    }
}

TEST_F(GLContextWindows, ADriverWithoutTheContextIsRefused)
{
    GetWglCalls().getProcAddress = &LoadReplacement<&RefuseContext>;
    ExpectFailure(": Failed to bind all required OpenGL methods.");
    EXPECT_EQ(s_counts["DeleteContext"], 1);
    EXPECT_EQ(s_counts["ReleaseDC"], 2);
    EXPECT_EQ(GetTitle(), std::wstring(m_context.GetVersion().begin(), m_context.GetVersion().end()));
}

TEST_F(GLContextWindows, ADriverThatLacksOneEntryPointIsRefused)
{
    s_missing = "glCompressedTexImage2D";
    GetWglCalls().getProcAddress = &LoadAllBut;
    ExpectFailure(": Failed to bind all required OpenGL methods.");
    EXPECT_EQ(s_counts["DeleteContext"], 2);
    EXPECT_EQ(s_counts["ReleaseDC"], 2);
}

TEST_F(GLContextWindows, AContextThatCannotBeBoundIsRefused)
{
    // The dummy's is bound, and released; the next is the real one.
    s_bindsCoreContext = true;
    GetWglCalls().makeCurrent = [](HDC deviceContext, HGLRC context) -> BOOL
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
