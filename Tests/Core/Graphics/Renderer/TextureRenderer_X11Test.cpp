#include "Tests/Core/Graphics/Renderer/RendererFixture_X11.h"

#include <array>
#include <random>

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::Texture;
using System::Math::Matrix4;

/// Rows from the top, tightly packed: blue, green, red and, with 32 bits, a fourth byte.
struct Image
{
    std::uint16_t width;
    std::uint16_t height;
    std::uint8_t bitsPerPixel;
    std::vector<std::uint8_t> bytes;

    [[nodiscard]] Pixel At(std::int32_t x, std::int32_t y) const
    {
        const std::size_t offset = (static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x)) *
                                   (static_cast<std::size_t>(bitsPerPixel) / 8);
        return {bytes.at(offset + 2), bytes.at(offset + 1), bytes.at(offset)};
    }
};

Image MakeNoise(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel)
{
    std::mt19937 random(width * 1000U + height + bitsPerPixel);
    Image image{width, height, bitsPerPixel, {}};
    image.bytes.resize(std::size_t{width} * height * bitsPerPixel / 8);
    for (std::uint8_t& byte : image.bytes)
        byte = static_cast<std::uint8_t>(random());
    return image;
}

/// The picture centred in the window, `scale` window pixels to a picture pixel, as the tool shows a capture.
Texture& AddImage(RendererScene& scene, const Image& image, const Frame& frame, float scale, float brightness)
{
    std::uint16_t id = 0;
    auto& textures = scene.GetRenderer().GetTextureRenderer();
    textures.Create(id, image.width, image.height, image.bitsPerPixel, image.bytes.data(), scene.GetRenderer());
    Texture* const texture = textures.Get(id);
    texture->model = Matrix4::ScaleAndTranslation(
        static_cast<float>(image.width) * scale, static_cast<float>(image.height) * scale, 1.0F,
        static_cast<float>(frame.GetWidth()) * 0.5F, static_cast<float>(frame.GetHeight()) * 0.5F, 0.1F);
    texture->color = {brightness, brightness, brightness, 1.0F};
    return *texture;
}

struct Sizes
{
    std::int32_t windowWidth;
    std::int32_t windowHeight;
    std::uint16_t imageWidth;
    std::uint16_t imageHeight;
};

} // namespace

class OriginalSize : public testing::TestWithParam<Sizes>
{
protected:
    /// Draws noise and compares each pixel with the image's, dimmed; `tolerance` in steps of 255.
    static void Check(float brightness, double tolerance, std::uint8_t bitsPerPixel)
    {
        const Sizes& sizes = GetParam();
        RendererScene scene(sizes.windowWidth, sizes.windowHeight);
        const Image image = MakeNoise(sizes.imageWidth, sizes.imageHeight, bitsPerPixel);
        AddImage(scene, image, scene.Draw(), 1.0F, brightness);
        const Frame frame = scene.Draw();
        // As the tool counts: half of each side without its fraction.
        const std::int32_t left = sizes.windowWidth / 2 - sizes.imageWidth / 2;
        const std::int32_t top = sizes.windowHeight / 2 - sizes.imageHeight / 2;
        for (std::int32_t y = 0; y < sizes.windowHeight; ++y)
        {
            for (std::int32_t x = 0; x < sizes.windowWidth; ++x)
            {
                const bool isInside =
                    x >= left && x < left + sizes.imageWidth && y >= top && y < top + sizes.imageHeight;
                const Pixel expected = isInside ? image.At(x - left, y - top) : s_black;
                ASSERT_NEAR(frame.At(x, y).red, expected.red * brightness, tolerance) << x << ", " << y;
                ASSERT_NEAR(frame.At(x, y).green, expected.green * brightness, tolerance) << x << ", " << y;
                ASSERT_NEAR(frame.At(x, y).blue, expected.blue * brightness, tolerance) << x << ", " << y;
            }
        }
    }
};

TEST_P(OriginalSize, EveryPixelIsExact)
{
    Check(1.0F, 0.0, 32);
    Check(1.0F, 0.0, 24);
}

TEST_P(OriginalSize, TheColourDimsInProportion)
{
    // A half may be rounded to either side.
    Check(0.5F, 0.5, 32);
    Check(0.75F, 0.5, 24);
}

INSTANTIATE_TEST_SUITE_P(EvenAndOdd, OriginalSize,
                         testing::Values(Sizes{100, 80, 100, 80}, Sizes{101, 81, 101, 81}, Sizes{101, 81, 50, 40},
                                         Sizes{100, 80, 51, 41}, Sizes{100, 81, 51, 40}, Sizes{640, 361, 639, 360}));

TEST(TexturePixels, AnEnlargedPictureShowsHardSquares)
{
    RendererScene scene(128, 128);
    const Image image = MakeNoise(16, 16, 32);
    AddImage(scene, image, scene.Draw(), 8.0F, 1.0F);
    const Frame frame = scene.Draw();
    for (std::int32_t y = 0; y < 128; ++y)
    {
        for (std::int32_t x = 0; x < 128; ++x)
            ASSERT_EQ(frame.At(x, y), image.At(x / 8, y / 8)) << x << ", " << y;
    }
}

TEST(TexturePixels, AShrunkPictureIsFiltered)
{
    RendererScene scene(64, 64);
    // Columns of black and white by turns: without a filter the half of them would be gone.
    Image image{128, 128, 24, {}};
    for (std::size_t index = 0; index < std::size_t{128} * 128; ++index)
        image.bytes.insert(image.bytes.end(), 3, index % 2 == 0 ? 0 : 255);
    AddImage(scene, image, scene.Draw(), 0.5F, 1.0F);
    const Frame frame = scene.Draw();
    for (std::int32_t y = 0; y < 64; ++y)
    {
        for (std::int32_t x = 0; x < 64; ++x)
            ASSERT_NEAR(frame.At(x, y).red, 127.5, 2.0) << x << ", " << y;
    }
}

TEST(TexturePixels, TheFourthByteDoesNotCount)
{
    RendererScene scene(16, 16);
    Image image = MakeNoise(16, 16, 32);
    for (std::size_t index = 3; index < image.bytes.size(); index += 4)
        image.bytes[index] = 0;
    AddImage(scene, image, scene.Draw(), 1.0F, 1.0F);
    EXPECT_EQ(scene.Draw().At(5, 9), image.At(5, 9));
}

TEST(TexturePixels, AnUpdateReplacesThePixels)
{
    RendererScene scene(31, 17);
    Image image = MakeNoise(31, 17, 24);
    const std::uint16_t id = AddImage(scene, image, scene.Draw(), 1.0F, 1.0F).id;
    std::reverse(image.bytes.begin(), image.bytes.end());
    EXPECT_TRUE(
        scene.GetRenderer().GetTextureRenderer().UpdateBitmap(id, 31, 17, 24, image.bytes.data(), scene.GetRenderer()));
    const Frame frame = scene.Draw();
    for (std::int32_t y = 0; y < 17; ++y)
    {
        for (std::int32_t x = 0; x < 31; ++x)
            ASSERT_EQ(frame.At(x, y), image.At(x, y)) << x << ", " << y;
    }
}

TEST(TexturePixels, AnUpdateReachesTheFilteredLevelsToo)
{
    RendererScene scene(32, 32);
    Image image{64, 64, 24, std::vector<std::uint8_t>(std::size_t{64} * 64 * 3, 0)};
    const std::uint16_t id = AddImage(scene, image, scene.Draw(), 0.5F, 1.0F).id;
    std::fill(image.bytes.begin(), image.bytes.end(), std::uint8_t{255});
    EXPECT_TRUE(
        scene.GetRenderer().GetTextureRenderer().UpdateBitmap(id, 64, 64, 24, image.bytes.data(), scene.GetRenderer()));
    EXPECT_EQ(scene.Draw().At(16, 16), s_white);
}

TEST(TexturePixels, TheNearerPictureHidesTheOther)
{
    RendererScene scene(20, 20);
    const Frame empty = scene.Draw();
    Image white{20, 20, 24, std::vector<std::uint8_t>(std::size_t{20} * 20 * 3, 255)};
    Texture& near = AddImage(scene, white, empty, 1.0F, 0.75F);
    near.model = Matrix4::ScaleAndTranslation(10, 10, 1, 5, 15, 0.2F);
    AddImage(scene, white, empty, 1.0F, 0.5F);
    const Frame frame = scene.Draw();
    EXPECT_NEAR(frame.At(4, 4).red, 191.25, 0.5);
    EXPECT_NEAR(frame.At(15, 15).red, 127.5, 0.5);
}

TEST(TexturePixels, ARemovedOrHiddenPictureIsNotDrawn)
{
    RendererScene scene(20, 20);
    const Frame empty = scene.Draw();
    Texture& texture = AddImage(scene, MakeNoise(20, 20, 32), empty, 1.0F, 1.0F);
    texture.visible = false;
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
    texture.visible = true;
    EXPECT_GT(scene.Draw().CountDrawn(), 300);
    EXPECT_TRUE(scene.GetRenderer().GetTextureRenderer().Remove(texture.id));
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
}

TEST(TexturePixels, ACollapsedPictureIsNotSeen)
{
    RendererScene scene(20, 20);
    Texture& texture = AddImage(scene, MakeNoise(20, 20, 32), scene.Draw(), 1.0F, 1.0F);
    texture.model = Matrix4::Collapse();
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
    texture.model.elements.fill(0.0F);
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
}

TEST(TexturePixels, ATurnedPictureIsDrawn)
{
    RendererScene scene(40, 40);
    Image white{20, 20, 24, std::vector<std::uint8_t>(std::size_t{20} * 20 * 3, 255)};
    Texture& texture = AddImage(scene, white, scene.Draw(), 1.0F, 1.0F);
    texture.model = Matrix4{{14, 14, 0, 0, -14, 14, 0, 0, 0, 0, 1, 0, 20, 20, 0.1F, 1}};
    const Frame frame = scene.Draw();
    EXPECT_EQ(frame.At(20, 8), s_white);
    EXPECT_EQ(frame.At(8, 8), s_black);
}

} // namespace Orvik::Tests
