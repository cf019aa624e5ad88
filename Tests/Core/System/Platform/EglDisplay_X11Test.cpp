#include "Core/System/Platform/EglDisplay.h"

#include <gtest/gtest.h>

namespace Orvik::System::Platform
{
namespace
{

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

} // namespace
} // namespace Orvik::System::Platform
