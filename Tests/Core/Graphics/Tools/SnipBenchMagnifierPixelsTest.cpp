#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace Orvik::Graphics::Tools
{
namespace
{

using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

/// What the magnifier is given to show.
class SnipBenchMagnifierPixelsTest : public ToolFixture
{
protected:
    static Tests::GLRecorder& GetRecorder() { return Tests::GLRecorder::GetInstance(); }

    /// Moves the cursor, and keeps the pixels that went to the magnifier's texture.
    void Look(std::int32_t x, std::int32_t y, unsigned side, unsigned bytesPerPixel = 4)
    {
        GetRecorder().ClearCalls();
        Update(Move(x, y));
        const std::vector<Tests::GLCall> uploads = GetRecorder().GetCalls("glTexSubImage2D");
        ASSERT_THAT(uploads, SizeIs(1));
        ASSERT_EQ(uploads[0].arguments[4], side);
        ASSERT_EQ(uploads[0].arguments[5], side);
        m_pixels = uploads[0].GetElements<std::uint8_t>();
        m_side = side;
        m_bytesPerPixel = bytesPerPixel;
        ASSERT_EQ(m_pixels.size(), side * side * bytesPerPixel);
    }

    [[nodiscard]] std::vector<unsigned> GetPixel(unsigned x, unsigned y) const
    {
        const auto first = m_pixels.begin() + static_cast<std::ptrdiff_t>((y * m_side + x) * m_bytesPerPixel);
        return {first, first + m_bytesPerPixel};
    }

    std::vector<std::uint8_t> m_pixels;
    unsigned m_side = 0;
    unsigned m_bytesPerPixel = 0;
};

TEST_F(SnipBenchMagnifierPixelsTest, TheCursorsPixelIsInTheMiddle)
{
    StartFull(400, 300); // a side of 64, four window pixels for a capture pixel
    Look(100, 200, 16);

    EXPECT_THAT(GetPixel(8, 8), ElementsAre(100, 200, 0, 255));
    EXPECT_THAT(GetPixel(0, 0), ElementsAre(92, 192, 0, 255));
    EXPECT_THAT(GetPixel(15, 15), ElementsAre(107, 207, 0, 255));
}

TEST_F(SnipBenchMagnifierPixelsTest, AtTheTopLeftCornerItsLeftAndUpperHalvesAreBlack)
{
    StartFull(400, 300);
    Update(Move(1, 1));
    Look(0, 0, 16);

    for (unsigned y = 0; y < 16; ++y)
    {
        for (unsigned x = 0; x < 16; ++x)
        {
            if (x < 8 || y < 8)
                ASSERT_THAT(GetPixel(x, y), Each(0)) << x << ", " << y;
            else
                ASSERT_THAT(GetPixel(x, y), ElementsAre(x - 8, y - 8, 0, 255)) << x << ", " << y;
        }
    }
}

TEST_F(SnipBenchMagnifierPixelsTest, BeyondTheBottomRightCornerItIsBlack)
{
    StartFull(400, 300);
    Look(400, 300, 16);

    EXPECT_THAT(GetPixel(7, 7), ElementsAre(399 - 256, 299 - 256, 1 << 4 | 1, 255));
    EXPECT_THAT(GetPixel(8, 7), Each(0));
    EXPECT_THAT(GetPixel(7, 8), Each(0));
    EXPECT_THAT(GetPixel(15, 15), Each(0));
}

TEST_F(SnipBenchMagnifierPixelsTest, TheImagesBorderIsLeftOut)
{
    OpenWindow(400, 300);
    Start(MakePicture(200, 100)); // begins at 100, 100
    Look(150, 140, 16);

    EXPECT_THAT(GetPixel(8, 8), ElementsAre(50, 40, 0, 255));
}

TEST_F(SnipBenchMagnifierPixelsTest, AShrunkCaptureIsAveraged)
{
    OpenWindow(401, 301);
    Start(MakePicture(801, 403)); // scale 1/2, begins at 0, 50
    Look(30, 57, 8);

    EXPECT_THAT(GetPixel(4, 4), ElementsAre(60, 14, 0, 255)); // of columns 60 and 61, rows 14 and 15
    EXPECT_THAT(GetPixel(0, 0), ElementsAre(52, 6, 0, 255));
}

TEST_F(SnipBenchMagnifierPixelsTest, APictureOfThreeBytesToThePixelIsShown)
{
    OpenWindow(400, 300);
    Start(MakePicture(400, 300, 24));
    Look(100, 200, 16, 3);

    EXPECT_THAT(GetPixel(8, 8), ElementsAre(100, 200, 0));
    EXPECT_THAT(GetPixel(15, 15), ElementsAre(107, 207, 0));
}

TEST_F(SnipBenchMagnifierPixelsTest, MovesMakeNoNewTextures)
{
    StartFull(400, 300);
    GetRecorder().ClearCalls();
    for (std::int32_t x = 10; x < 60; ++x)
        Update(Move(x, 70));

    EXPECT_THAT(GetRecorder().GetCalls("glTexImage2D"), SizeIs(0));
    EXPECT_THAT(GetRecorder().GetCalls("glTexSubImage2D"), SizeIs(50));
}

TEST_F(SnipBenchMagnifierPixelsTest, AMoveToTheSamePlaceUploadsNothing)
{
    StartFull(400, 300);
    Update(Move(10, 20));
    GetRecorder().ClearCalls();
    Update(Move(10, 20));

    EXPECT_THAT(GetRecorder().GetCalls(), SizeIs(0));
}

TEST_F(SnipBenchMagnifierPixelsTest, TheCaptureIsUploadedOncePerStart)
{
    OpenWindow(400, 300);
    GetRecorder().ClearCalls();
    Start(MakePicture(400, 300));
    Update({Move(10, 20), Wheel(1.0F), LeftPress(), Move(30, 50), LeftRelease()});

    const std::vector<Tests::GLCall> uploads = GetRecorder().GetCalls("glTexImage2D");
    EXPECT_EQ(std::count_if(uploads.begin(), uploads.end(),
                            [](const Tests::GLCall& call) { return call.arguments[3] == 400; }),
              1);
}

} // namespace
} // namespace Orvik::Graphics::Tools
