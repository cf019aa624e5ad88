#include "Desktops/X11/EglDisplay.h"

#include "Tests/Support/VirtualDisplay.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace Orvik::System::Desktop
{
namespace
{

using Desktops::X11::GetEglConfiguration;

int GetAttribute(EGLint attribute)
{
    EGLint value = 0;
    eglGetConfigAttrib(GetEglConfiguration()->display, GetEglConfiguration()->config, attribute, &value);
    return value;
}

TEST(EglDisplay, ConfigurationHasWhatTheContextDemands)
{
    ASSERT_TRUE(GetEglConfiguration());
    EXPECT_EQ(GetAttribute(EGL_RED_SIZE), 8);
    EXPECT_EQ(GetAttribute(EGL_GREEN_SIZE), 8);
    EXPECT_EQ(GetAttribute(EGL_BLUE_SIZE), 8);
    EXPECT_EQ(GetAttribute(EGL_ALPHA_SIZE), 8);
    EXPECT_GE(GetAttribute(EGL_DEPTH_SIZE), 24);
    EXPECT_GE(GetAttribute(EGL_STENCIL_SIZE), 8);
    EXPECT_EQ(GetAttribute(EGL_SAMPLES), 4);
    EXPECT_NE(GetAttribute(EGL_SURFACE_TYPE) & EGL_WINDOW_BIT, 0);
    EXPECT_NE(GetAttribute(EGL_RENDERABLE_TYPE) & EGL_OPENGL_BIT, 0);
}

TEST(EglDisplay, ConfigurationIsOnATrueColorVisual)
{
    ASSERT_TRUE(GetEglConfiguration());
    EXPECT_EQ(GetEglConfiguration()->visual.c_class, TrueColor);
    EXPECT_GE(GetEglConfiguration()->visual.depth, 24);
    EXPECT_EQ(static_cast<VisualID>(GetAttribute(EGL_NATIVE_VISUAL_ID)), GetEglConfiguration()->visual.visualid);
}

TEST(EglDisplay, ConfigurationIsChosenOnce)
{
    EXPECT_EQ(&GetEglConfiguration(), &GetEglConfiguration());
}

/// On a server of its own, in a process of its own. 0 if there is a configuration of 8 bits to the colour.
int CheckDepth(std::uint32_t depth)
{
    const Tests::VirtualDisplay server(320, 200, depth);
    setenv("DISPLAY", server.GetName().c_str(), 1);
    if (!GetEglConfiguration())
        return 1;
    for (const EGLint channel : {EGL_RED_SIZE, EGL_GREEN_SIZE, EGL_BLUE_SIZE})
        if (GetAttribute(channel) != 8)
            return 2;
    const bool isComplete = GetAttribute(EGL_DEPTH_SIZE) >= 24 && GetAttribute(EGL_STENCIL_SIZE) >= 8 &&
                            GetAttribute(EGL_SAMPLES) == 4 && GetEglConfiguration()->visual.c_class == TrueColor;
    return isComplete ? 0 : 3;
}

class EglDepthX11DeathTest : public testing::TestWithParam<std::uint32_t>
{
protected:
    EglDepthX11DeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

TEST_P(EglDepthX11DeathTest, AScreenOfAnotherDepthHasAConfigurationToo)
{
    EXPECT_EXIT(std::_Exit(CheckDepth(GetParam())), testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Depths, EglDepthX11DeathTest, testing::Values(16U, 24U, 30U));

} // namespace
} // namespace Orvik::System::Desktop
