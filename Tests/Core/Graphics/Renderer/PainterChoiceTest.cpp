#include "Core/Graphics/Renderer/PainterChoice.h"

#include "Core/System/Platform/NullDesktop.h"
#include "Tests/Support/EnvironmentVariable.h"

#include <gtest/gtest.h>

namespace Orvik::Tests
{

using Graphics::Renderer::ChoosePainter;
using Graphics::Renderer::PainterChoice;
using System::Desktop::SurfaceKind;
using System::Platform::NullDesktop;

class PainterChoiceTest : public testing::Test
{
protected:
    ~PainterChoiceTest() override { NullDesktop::GetInstance().Reset(); }
};

TEST_F(PainterChoiceTest, AGraphicsCardIsDrawnWithByOpenGL)
{
    const EnvironmentVariable unset("ORVIK_RENDERER", nullptr);
    const PainterChoice choice = ChoosePainter();
    EXPECT_EQ(choice.kind, SurfaceKind::OpenGL);
    EXPECT_FALSE(choice.isByHand);
    EXPECT_EQ(choice.reason, "the null desktop has a graphics card");
}

TEST_F(PainterChoiceTest, WithoutOneTheProgramDrawsItself)
{
    const EnvironmentVariable unset("ORVIK_RENDERER", nullptr);
    NullDesktop::GetInstance().hasGraphicsCard = false;
    const PainterChoice choice = ChoosePainter();
    EXPECT_EQ(choice.kind, SurfaceKind::Pixels);
    EXPECT_FALSE(choice.isByHand);
    EXPECT_EQ(choice.reason, "the null desktop has no graphics card");
}

TEST_F(PainterChoiceTest, TheEnvironmentDecidesByHand)
{
    NullDesktop::GetInstance().hasGraphicsCard = false;
    const EnvironmentVariable variable("ORVIK_RENDERER", "opengl");
    EXPECT_EQ(ChoosePainter().kind, SurfaceKind::OpenGL);
    EXPECT_TRUE(ChoosePainter().isByHand);
    NullDesktop::GetInstance().hasGraphicsCard = true;
    const EnvironmentVariable other("ORVIK_RENDERER", "raster");
    EXPECT_EQ(ChoosePainter().kind, SurfaceKind::Pixels);
    EXPECT_TRUE(ChoosePainter().isByHand);
}

TEST_F(PainterChoiceTest, AnythingElseInTheEnvironmentIsPassedOver)
{
    const EnvironmentVariable variable("ORVIK_RENDERER", "OpenGL");
    EXPECT_FALSE(ChoosePainter().isByHand);
}

} // namespace Orvik::Tests
