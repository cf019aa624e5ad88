#include "Core/System/Multimedia/Bitmap.h"

#include "Core/System/Error/Assertion.h"
#include "Tests/Core/System/Multimedia/BitmapBytes.h"
#include "Tests/Support/AssertionTrap.h"

#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace Orvik::System::Multimedia
{
namespace
{

using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t s_lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t s_highest = std::numeric_limits<std::int32_t>::max();

static_assert(!std::is_copy_constructible_v<Bitmap>);
static_assert(!std::is_copy_assignable_v<Bitmap>);
static_assert(std::is_nothrow_move_constructible_v<Bitmap>);
static_assert(!std::is_polymorphic_v<Bitmap>);

// Bytes 1, 2, 3 and so on.
Bitmap MakeCounting(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel)
{
    Bitmap bitmap(width, height, bitsPerPixel);
    for (std::int32_t i = 0; i < bitmap.GetSize(); ++i)
        bitmap.GetPixels()[i] = static_cast<std::uint8_t>(i + 1);
    return bitmap;
}

void ExpectEmpty(const Bitmap& bitmap)
{
    EXPECT_EQ(bitmap.GetPixels(), nullptr);
    EXPECT_EQ(bitmap.GetSize(), 0);
    EXPECT_EQ(bitmap.GetWidth(), 0);
    EXPECT_EQ(bitmap.GetHeight(), 0);
    EXPECT_EQ(bitmap.GetStride(), 0);
    EXPECT_EQ(bitmap.GetBitsPerPixel(), 0);
}

TEST(Bitmap, IsEmptyAtFirst)
{
    ExpectEmpty(Bitmap());
}

TEST(Bitmap, KnowsItsSize)
{
    const Bitmap bitmap(3, 2, 24);
    EXPECT_EQ(bitmap.GetWidth(), 3);
    EXPECT_EQ(bitmap.GetHeight(), 2);
    EXPECT_EQ(bitmap.GetBitsPerPixel(), 24);
    EXPECT_EQ(bitmap.GetStride(), 9);
    EXPECT_EQ(bitmap.GetSize(), 18);
    EXPECT_NE(bitmap.GetPixels(), nullptr);
}

TEST(Bitmap, SetSizeWithUnchangedValuesKeepsThePixels)
{
    Bitmap bitmap = MakeCounting(2, 2, 32);
    const std::uint8_t* pixels = bitmap.GetPixels();
    bitmap.SetSize(2, 2, 32);
    EXPECT_EQ(bitmap.GetPixels(), pixels);
    EXPECT_EQ(GetBytes(bitmap), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
}

TEST(Bitmap, SetSizeToNothingOnAnEmptyBitmapLeavesItEmpty)
{
    Bitmap bitmap;
    bitmap.SetSize(0, 0, 0);
    ExpectEmpty(bitmap);
}

TEST(Bitmap, AChangeOfOnlyTheBitDepthDiscardsThePixels)
{
    Bitmap bitmap = MakeCounting(2, 2, 32);
    bitmap.SetSize(2, 2, 24);
    EXPECT_EQ(bitmap.GetBitsPerPixel(), 24);
    EXPECT_EQ(bitmap.GetStride(), 6);
    EXPECT_EQ(bitmap.GetSize(), 12);

    // 33 bits are as many bytes as 32.
    Bitmap other = MakeCounting(2, 2, 32);
    other.SetSize(2, 2, 33);
    EXPECT_EQ(other.GetBitsPerPixel(), 33);
    EXPECT_EQ(other.GetSize(), 16);
}

TEST(Bitmap, ABitmapWithSizeAndWithoutBytesHasMemoryOfItsOwn)
{
    const Bitmap bitmap(0, 5, 32);
    EXPECT_EQ(bitmap.GetSize(), 0);
    EXPECT_EQ(bitmap.GetHeight(), 5);
    EXPECT_NE(bitmap.GetPixels(), nullptr);
}

TEST(Bitmap, BytesOfARowAreCutToSixteenBits)
{
    EXPECT_EQ(Bitmap(16'383, 1, 32).GetStride(), 65'532);
    EXPECT_EQ(Bitmap(16'384, 1, 32).GetStride(), 0);
    EXPECT_EQ(Bitmap(16'385, 3, 32).GetSize(), 12);
}

TEST(Bitmap, MoreThanTwoGibibytesCanNotBeAllocated)
{
    Bitmap bitmap = MakeCounting(1, 1, 32);
    EXPECT_ASSERTION(bitmap.SetSize(16'383, 65'535, 32), "m_imageBuffer != nullptr",
                     "Failed to allocate buffer for bitmap.");
    ExpectEmpty(bitmap);
}

TEST(Bitmap, ASiteThatGoesOnAfterAFailedAllocationHasAnEmptyBitmap)
{
    const Tests::AssertionList failed;
    Bitmap bitmap = MakeCounting(2, 1, 32);
    const Bitmap crop = bitmap.Crop(0, 0, 16'383, 65'535);
    bitmap.Resize(16'383, 65'535, ResizeMethod::Box);
    ExpectEmpty(crop);
    ExpectEmpty(bitmap);
}

TEST(Bitmap, AMovedFromBitmapIsEmpty)
{
    const auto first = std::make_unique<Bitmap>(MakeCounting(1, 2, 24));
    const std::uint8_t* pixels = first->GetPixels();
    const auto second = std::make_unique<Bitmap>(std::move(*first));
    ExpectEmpty(*first);
    EXPECT_EQ(second->GetPixels(), pixels);
    EXPECT_EQ(GetBytes(*second), (Bytes{1, 2, 3, 4, 5, 6}));

    Bitmap third = MakeCounting(9, 9, 32);
    third = std::move(*second);
    ExpectEmpty(*second);
    EXPECT_EQ(third.GetWidth(), 1);
    EXPECT_EQ(third.GetHeight(), 2);
    EXPECT_EQ(third.GetStride(), 3);
    EXPECT_EQ(third.GetBitsPerPixel(), 24);
    EXPECT_EQ(GetBytes(third), (Bytes{1, 2, 3, 4, 5, 6}));
}

TEST(Bitmap, AMovedFromBitmapCanBeUsedAgain)
{
    const auto first = std::make_unique<Bitmap>(MakeCounting(1, 2, 24));
    const Bitmap second(std::move(*first));
    first->SetSize(1, 2, 24);
    EXPECT_NE(first->GetPixels(), nullptr);
    EXPECT_NE(first->GetPixels(), second.GetPixels());
}

TEST(Bitmap, AssigningToItselfIsAnAssertionFailure)
{
    Bitmap bitmap = MakeCounting(1, 1, 24);
    Bitmap& same = bitmap;
    EXPECT_ASSERTION(bitmap = std::move(same), "this != &other", "Assignment to itself.");
    EXPECT_EQ(GetBytes(bitmap), (Bytes{1, 2, 3}));
}

TEST(Bitmap, CopyFromImageBufferReplacesThePixels)
{
    Bitmap bitmap = MakeCounting(1, 2, 24);
    const Bytes data = {9, 8, 7, 6, 5, 4};
    bitmap.CopyFromImageBuffer(data.data(), data.size());
    EXPECT_EQ(GetBytes(bitmap), data);
}

TEST(Bitmap, AShorterBufferLeavesTheRestOfThePixels)
{
    Bitmap bitmap = MakeCounting(1, 2, 24);
    const Bytes data = {9, 8};
    bitmap.CopyFromImageBuffer(data.data(), data.size());
    EXPECT_EQ(GetBytes(bitmap), (Bytes{9, 8, 3, 4, 5, 6}));
}

TEST(Bitmap, NoBytesCanBeCopiedIntoAnEmptyBitmap)
{
    Bitmap bitmap;
    bitmap.CopyFromImageBuffer(nullptr, 0);
    ExpectEmpty(bitmap);
}

TEST(Bitmap, OneByteTooManyToCopyIsAnAssertionFailure)
{
    Bitmap bitmap = MakeCounting(1, 2, 24);
    const Bytes data(7);
    EXPECT_ASSERTION(bitmap.CopyFromImageBuffer(data.data(), 7), "bytes <= GetSize()", "Buffer overflow detected.");
    EXPECT_ASSERTION(bitmap.CopyFromImageBuffer(data.data(), std::numeric_limits<std::uint64_t>::max()),
                     "bytes <= GetSize()", "Buffer overflow detected.");
    EXPECT_EQ(GetBytes(bitmap), (Bytes{1, 2, 3, 4, 5, 6}));
}

TEST(BitmapCrop, InsideTheImageCopiesThatPart)
{
    const Bitmap source = MakeCounting(3, 3, 24);
    const Bitmap crop = source.Crop(1, 1, 2, 1);
    EXPECT_EQ(crop.GetWidth(), 2);
    EXPECT_EQ(crop.GetHeight(), 1);
    EXPECT_EQ(crop.GetBitsPerPixel(), 24);
    EXPECT_EQ(GetBytes(crop), (Bytes{13, 14, 15, 16, 17, 18}));
}

TEST(BitmapCrop, OfTheWholeImageIsACopy)
{
    const Bitmap source = MakeCounting(3, 2, 32);
    const Bitmap crop = source.Crop(0, 0, 3, 2);
    EXPECT_EQ(GetBytes(crop), GetBytes(source));
    EXPECT_NE(crop.GetPixels(), source.GetPixels());
}

TEST(BitmapCrop, LeftOfTheImageLeavesBlackColumns)
{
    const Bitmap source = MakeCounting(20, 1, 32);
    const Bitmap crop = source.Crop(-10, 0, 12, 1);
    Bytes expected(40, 0);
    for (std::uint8_t value = 1; value <= 8; ++value)
        expected.push_back(value);
    EXPECT_EQ(GetBytes(crop), expected);
}

TEST(BitmapCrop, AboveTheImageLeavesBlackRows)
{
    const Bitmap source = MakeCounting(1, 2, 24);
    EXPECT_EQ(GetBytes(source.Crop(0, -2, 1, 3)), (Bytes{0, 0, 0, 0, 0, 0, 1, 2, 3}));
}

TEST(BitmapCrop, BeyondTheRightAndBottomEdgesLeavesBlackPixels)
{
    const Bitmap source = MakeCounting(2, 2, 24);
    EXPECT_EQ(GetBytes(source.Crop(1, 1, 2, 2)), (Bytes{10, 11, 12, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(BitmapCrop, LargerThanTheImageHoldsItWhole)
{
    const Bitmap source = MakeCounting(1, 1, 24);
    EXPECT_EQ(GetBytes(source.Crop(-1, -1, 3, 3)),
              (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(BitmapCrop, WhollyOutsideIsBlackWhereverItLies)
{
    const Bitmap source = MakeCounting(2, 2, 32);
    for (const std::int32_t x : {s_lowest, -65'536, -2, 0, 2, 3, 65'536, s_highest})
    {
        for (const std::int32_t y : {s_lowest, -65'536, -2, 0, 2, 3, 65'536, s_highest})
        {
            if (x == 0 && y == 0)
                continue;
            EXPECT_EQ(GetBytes(source.Crop(x, y, 2, 2)), Bytes(16, 0)) << x << ", " << y;
        }
    }
}

TEST(BitmapCrop, FromAnEmptyBitmapHasNoBytes)
{
    const Bitmap crop = Bitmap().Crop(0, 0, 4, 4);
    EXPECT_EQ(crop.GetWidth(), 4);
    EXPECT_EQ(crop.GetSize(), 0);
}

TEST(BitmapCrop, OfNoSizeHasNoBytes)
{
    const Bitmap source = MakeCounting(2, 2, 32);
    EXPECT_EQ(source.Crop(1, 1, 0, 2).GetSize(), 0);
    EXPECT_EQ(source.Crop(1, 1, 2, 0).GetSize(), 0);
}

TEST(BitmapCrop, SizeIsCutToSixteenBits)
{
    const Bitmap crop = MakeCounting(2, 2, 32).Crop(0, 0, 65'537, 65'538);
    EXPECT_EQ(crop.GetWidth(), 1);
    EXPECT_EQ(crop.GetHeight(), 2);
    EXPECT_EQ(GetBytes(crop), (Bytes{1, 2, 3, 4, 9, 10, 11, 12}));
}

TEST(BitmapCrop, WithRowsCutToSixteenBitsStaysWithinBothImages)
{
    const Bitmap source = MakeCounting(2, 2, 32);
    const Bitmap cutTarget = source.Crop(0, 0, 16'385, 2); // rows of 4 bytes
    EXPECT_EQ(GetBytes(cutTarget), (Bytes{1, 2, 3, 4, 9, 10, 11, 12}));
    EXPECT_EQ(GetBytes(source.Crop(-2, 0, 16'385, 2)), Bytes(8, 0));

    const Bitmap cutSource = MakeCounting(16'385, 2, 32);
    EXPECT_EQ(GetBytes(cutSource.Crop(0, 0, 2, 2)), (Bytes{1, 2, 3, 4, 0, 0, 0, 0, 5, 6, 7, 8, 0, 0, 0, 0}));
    EXPECT_EQ(GetBytes(cutSource.Crop(16'000, 0, 1, 2)), Bytes(8, 0));
}

TEST(BitmapResize, BoxHalvesAnImage)
{
    Bitmap bitmap = MakeCounting(2, 2, 32);
    bitmap.Resize(1, 1, ResizeMethod::Box);
    EXPECT_EQ(bitmap.GetWidth(), 1);
    EXPECT_EQ(bitmap.GetHeight(), 1);
    EXPECT_EQ(bitmap.GetBitsPerPixel(), 32);
    EXPECT_EQ(GetBytes(bitmap), (Bytes{7, 8, 9, 10}));
}

TEST(BitmapResize, BoxToALargerSizeRepeatsPixels)
{
    Bitmap bitmap = MakeCounting(2, 1, 24);
    bitmap.Resize(4, 2, ResizeMethod::Box);
    EXPECT_EQ(GetBytes(bitmap), (Bytes{1, 2, 3, 1, 2, 3, 4, 5, 6, 4, 5, 6, 1, 2, 3, 1, 2, 3, 4, 5, 6, 4, 5, 6}));
}

TEST(BitmapResize, ACopyOfAnotherSizeLeavesTheImageAsItIs)
{
    const Bitmap bitmap = MakeCounting(2, 2, 32);
    EXPECT_EQ(GetBytes(bitmap.Resized(1, 1, ResizeMethod::Box)), (Bytes{7, 8, 9, 10}));
    EXPECT_EQ(GetBytes(bitmap), GetBytes(MakeCounting(2, 2, 32)));
}

TEST(BitmapResize, TheMethodIsHandedOn)
{
    Bitmap nearest = MakeCounting(2, 1, 24);
    nearest.Resize(1, 1, ResizeMethod::Nearest);
    EXPECT_EQ(GetBytes(nearest), (Bytes{1, 2, 3}));

    Bitmap bilinear = MakeCounting(2, 1, 24);
    bilinear.Resize(1, 1, ResizeMethod::Bilinear);
    EXPECT_EQ(GetBytes(bilinear), (Bytes{2, 3, 4}));
}

TEST(BitmapResize, AnUnknownMethodIsAnAssertionFailureAndKeepsTheImage)
{
    Bitmap bitmap = MakeCounting(1, 1, 24);
    EXPECT_ASSERTION(bitmap.Resize(2, 2, static_cast<ResizeMethod>(200)), "false", "Implementation is missing.");
    EXPECT_EQ(GetBytes(bitmap), (Bytes{1, 2, 3}));
}

TEST(BitmapResize, ToNothingAndFromNothing)
{
    Bitmap bitmap = MakeCounting(2, 2, 32);
    bitmap.Resize(0, 0, ResizeMethod::Box);
    EXPECT_EQ(bitmap.GetSize(), 0);
    bitmap.Resize(1, 2, ResizeMethod::Box);
    EXPECT_EQ(GetBytes(bitmap), Bytes(8, 0));

    Bitmap empty;
    empty.Resize(3, 3, ResizeMethod::Nearest);
    EXPECT_EQ(empty.GetWidth(), 3);
    EXPECT_EQ(empty.GetSize(), 0);
}

TEST(BitmapResize, WithRowsCutToSixteenBitsMakesZeros)
{
    Bitmap cutTarget = MakeCounting(2, 2, 32);
    cutTarget.Resize(16'385, 2, ResizeMethod::Box);
    EXPECT_EQ(GetBytes(cutTarget), Bytes(8, 0));

    Bitmap cutSource = MakeCounting(16'385, 2, 32);
    cutSource.Resize(1, 1, ResizeMethod::Nearest);
    EXPECT_EQ(GetBytes(cutSource), Bytes(4, 0));
}

} // namespace
} // namespace Orvik::System::Multimedia
