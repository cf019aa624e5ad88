#include "Core/Graphics/Renderer/PainterChoice.h"

#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/NullDesktop.h"

#include <gtest/gtest.h>

namespace Orvik::Tests
{

using Desktops::SurfaceKind;
using Graphics::Renderer::ChoosePainter;
using Graphics::Renderer::PainterChoice;
using Tests::NullDesktop;

class PainterChoiceTest : public testing::Test
{
protected:
    ~PainterChoiceTest() override { Tests::NullDesktop::GetInstance().Reset(); }
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
    Tests::NullDesktop::GetInstance().hasGraphicsCard = false;
    const PainterChoice choice = ChoosePainter();
    EXPECT_EQ(choice.kind, SurfaceKind::Pixels);
    EXPECT_FALSE(choice.isByHand);
    EXPECT_EQ(choice.reason, "the null desktop has no graphics card");
}

TEST_F(PainterChoiceTest, TheEnvironmentDecidesByHand)
{
    Tests::NullDesktop::GetInstance().hasGraphicsCard = false;
    const EnvironmentVariable variable("ORVIK_RENDERER", "opengl");
    EXPECT_EQ(ChoosePainter().kind, SurfaceKind::OpenGL);
    EXPECT_TRUE(ChoosePainter().isByHand);
    Tests::NullDesktop::GetInstance().hasGraphicsCard = true;
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
