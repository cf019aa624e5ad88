// A polygon from its first click to its files: the program's tool and the program's receiver, input as values.
#include "Application/SnipFiles.h"
#include "Application/SnipJson.h"
#include "Core/Graphics/Tools/SnipBench.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestApplication.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::SnipBench
{
namespace
{

using Graphics::Tools::SnipMode;
using Graphics::Tools::SnipState;
using System::Math::Point;
using System::Multimedia::Bitmap;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;
using testing::ElementsAre;

constexpr auto s_window = Desktops::NativeWindow{1};

class PolygonSnip : public testing::Test
{
protected:
    PolygonSnip()
    {
        EXPECT_TRUE(renderer.Initialize(s_window, "PolygonSnip"));
        renderer.Resize(s_window, 200, 100);
        application.CreateDisplayCache();
        settings = {directory.GetPath(), "png", false, {}};
        tool.onResult = [this](Graphics::Tools::SnipBench::Result& result)
        {
            ring = *result.polygon;
            bounds = *result.bounds;
            SaveSnip(result, settings);
            return true;
        };
        Graphics::Tools::SnipBench::Parameters parameters;
        parameters.cropToSelection = true;
        parameters.bitmap = MakePicture();
        ToolContext context;
        tool.Start(context, std::move(parameters), renderer);
        EXPECT_TRUE(tool.SetMode(SnipMode::Polygon));
    }

    /// Every byte of it is 90 or 255, so that a cleared pixel stands out.
    static Bitmap MakePicture()
    {
        Bitmap picture(200, 100, 32);
        for (std::int32_t offset = 0; offset < picture.GetSize(); ++offset)
            picture.GetPixels()[offset] = offset % 4 == 3 ? 255 : 90;
        return picture;
    }

    void MoveTo(Point position)
    {
        ToolContext context;
        context.type = ToolEventType::MouseMove;
        context.x = position.x;
        context.y = position.y;
        tool.Update(context, renderer);
    }

    void Click(Point position)
    {
        MoveTo(position);
        ToolContext context;
        context.type = ToolEventType::MouseButton;
        context.pressed = false;
        tool.Update(context, renderer);
    }

    [[nodiscard]] std::filesystem::path FindFile(const std::string& extension) const
    {
        for (const auto& entry : std::filesystem::directory_iterator(directory.GetPath()))
        {
            if (entry.path().extension() == extension)
                return entry.path();
        }
        return {};
    }

    [[nodiscard]] std::string ReadMeta() const { return Tests::ReadText(FindFile(".json")); }

    /// Whether the saved picture has its pixel there, or transparent black.
    [[nodiscard]] bool IsKept(const Bitmap& snip, int x, int y) const
    {
        const std::uint8_t* pixel = snip.GetPixels() + y * snip.GetStride() + x * 4;
        if (std::all_of(pixel, pixel + 4, [](std::uint8_t byte) { return byte == 0; }))
            return false;
        EXPECT_THAT(std::vector<int>(pixel, pixel + 4), ElementsAre(90, 90, 90, 255)) << x << ", " << y;
        return true;
    }

    [[nodiscard]] Bitmap LoadSnip() const
    {
        Bitmap snip;
        EXPECT_TRUE(snip.Load(FindFile(".png").string()));
        return snip;
    }

    Tests::TestApplication application;
    Tests::TemporaryDirectory directory;
    SnipFileSettings settings;
    Graphics::Renderer::Renderer renderer;
    Graphics::Tools::SnipBench tool;
    std::vector<Point> ring;
    System::Math::Rectangle bounds;
};

TEST_F(PolygonSnip, ATriangleIsCutOutAndMasked)
{
    Click({20, 10});
    Click({120, 10});
    Click({20, 60});
    EXPECT_EQ(tool.GetState(), SnipState::Selecting);
    Click({25, 12});
    EXPECT_EQ(tool.GetState(), SnipState::Ready);
    EXPECT_EQ(bounds, (System::Math::Rectangle{20, 10, 120, 60}));
    EXPECT_THAT(ring, ElementsAre(Point{0, 0}, Point{100, 0}, Point{0, 50}, Point{0, 0}));

    const Bitmap snip = LoadSnip();
    ASSERT_EQ(snip.GetWidth(), 100);
    ASSERT_EQ(snip.GetHeight(), 50);
    EXPECT_TRUE(IsKept(snip, 0, 0));
    EXPECT_TRUE(IsKept(snip, 99, 0)) << "the top edge belongs to the shape";
    EXPECT_TRUE(IsKept(snip, 40, 25));
    EXPECT_FALSE(IsKept(snip, 60, 25));
    EXPECT_FALSE(IsKept(snip, 99, 49));
    const std::string id = FindFile(".json").stem().string();
    const std::string meta = ReadMeta();
    EXPECT_THAT(meta, testing::HasSubstr("\"id\": \"" + id + "\""));
    EXPECT_THAT(meta, testing::EndsWith(R"(    "image": {
        "size": {
            "width": 100,
            "height": 50
        },
        "mask": [
            {
                "x": 0,
                "y": 0
            },
            {
                "x": 100,
                "y": 0
            },
            {
                "x": 0,
                "y": 50
            },
            {
                "x": 0,
                "y": 0
            }
        ]
    }
})"));
}

TEST_F(PolygonSnip, WithTheMaskKeptThePictureIsAsCut)
{
    settings.keepMask = true;
    Click({20, 10});
    Click({120, 10});
    Click({20, 60});
    Click({20, 10});
    const Bitmap snip = LoadSnip();
    EXPECT_TRUE(IsKept(snip, 99, 49));
    EXPECT_TRUE(IsKept(snip, 60, 25));
    EXPECT_NE(ReadMeta().find("\"mask\": ["), std::string::npos);
}

} // namespace
} // namespace Orvik::SnipBench
