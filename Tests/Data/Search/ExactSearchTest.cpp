#include "Data/Search/ExactSearch.h"

#include "Tests/Support/SamplePictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace Orvik::Data
{
namespace
{

using System::Multimedia::Bitmap;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t s_all = 1'000'000;

/// What anyone would write: each pixel of each place.
std::vector<FoundPlace> SearchPlainly(const Bitmap& wanted, const Bitmap& picture)
{
    std::vector<FoundPlace> places;
    for (std::int32_t y = 0; y + wanted.GetHeight() <= picture.GetHeight(); ++y)
        for (std::int32_t x = 0; x + wanted.GetWidth() <= picture.GetWidth(); ++x)
        {
            bool isEqual = true;
            for (std::int32_t row = 0; row < wanted.GetHeight() && isEqual; ++row)
                for (std::int32_t column = 0; column < wanted.GetWidth() && isEqual; ++column)
                {
                    const std::uint8_t* const own = wanted.GetPixels() + row * wanted.GetStride() + column * 4;
                    const std::uint8_t* const there =
                        picture.GetPixels() + (y + row) * picture.GetStride() + (x + column) * 4;
                    isEqual = own[3] == 0 || (own[0] == there[0] && own[1] == there[1] && own[2] == there[2]);
                }
            if (isEqual)
                places.push_back({x, y, 1.0});
        }
    return places;
}

std::vector<FoundPlace> Search(const Bitmap& wanted, const Bitmap& picture, std::size_t most = s_all)
{
    return FindExact(MakeSearchTemplate(wanted), MakeSearchPicture(picture), most);
}

Bitmap MakeFlat(std::uint16_t width, std::uint16_t height, std::uint8_t value)
{
    Bitmap bitmap(width, height, 32);
    std::fill_n(bitmap.GetPixels(), bitmap.GetSize(), value);
    return bitmap;
}

TEST(ExactSearch, EveryPlaceOfRandomTemplatesIsFound)
{
    std::mt19937 random(7);
    const auto below = [&random](std::int32_t limit)
    { return static_cast<std::int32_t>(random() % static_cast<unsigned>(limit)); };
    for (const char* kind : {"interface", "text", "photo"})
    {
        const Bitmap picture = Tests::MakeSamplePicture(kind, 150, 110);
        for (int i = 0; i < 25; ++i)
        {
            const std::int32_t width = 1 + below(20);
            const std::int32_t height = 1 + below(12);
            const std::int32_t x = below(150 - width);
            const std::int32_t y = below(110 - height);
            Bitmap wanted = picture.Crop(x, y, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
            if (i % 3 == 0) // some pixels don't count
                for (std::int32_t pixel = 0; pixel < width * height; pixel += 1 + below(4))
                    std::fill_n(wanted.GetPixels() + pixel * 4, 4, std::uint8_t{0});
            const std::vector<FoundPlace> places = Search(wanted, picture);
            const bool counts = !MakeSearchTemplate(wanted).runs.empty();
            EXPECT_EQ(places, counts ? SearchPlainly(wanted, picture) : std::vector<FoundPlace>()) << kind << i;
        }
    }
}

TEST(ExactSearch, ATemplateOfOneColourIsEverywhere)
{
    EXPECT_EQ(Search(MakeFlat(3, 2, 9), MakeFlat(40, 30, 9)).size(), 38U * 29U);
    EXPECT_THAT(Search(MakeFlat(3, 2, 9), MakeFlat(40, 30, 8)), IsEmpty());
}

TEST(ExactSearch, AtMostSoManyAreFoundFromTheTop)
{
    const std::vector<FoundPlace> places = Search(MakeFlat(3, 2, 9), MakeFlat(40, 300, 9), 50);
    ASSERT_EQ(places.size(), 50U);
    EXPECT_EQ(places.front(), (FoundPlace{0, 0, 1.0}));
    EXPECT_EQ(places.back(), (FoundPlace{11, 1, 1.0}));
}

TEST(ExactSearch, TheCornersAreSearched)
{
    const Bitmap picture = Tests::MakeSamplePicture("noise", 64, 200);
    EXPECT_THAT(Search(picture.Crop(0, 0, 5, 5), picture), ElementsAre(FoundPlace{0, 0, 1.0}));
    EXPECT_THAT(Search(picture.Crop(59, 195, 5, 5), picture), ElementsAre(FoundPlace{59, 195, 1.0}));
    EXPECT_THAT(Search(picture, picture), ElementsAre(FoundPlace{0, 0, 1.0}));
}

TEST(ExactSearch, OnePixelThatDiffersIsEnough)
{
    const Bitmap picture = Tests::MakeSamplePicture("noise", 64, 64);
    for (std::int32_t pixel = 0; pixel < 8 * 8; ++pixel)
    {
        Bitmap wanted = picture.Crop(20, 20, 8, 8);
        wanted.GetPixels()[pixel * 4 + pixel % 3] ^= 1;
        EXPECT_THAT(Search(wanted, picture), IsEmpty()) << pixel;
        wanted.GetPixels()[pixel * 4 + 3] = 0; // doesn't count any more
        EXPECT_EQ(Search(wanted, picture).size(), 1U) << pixel;
    }
}

TEST(ExactSearch, TransparencyOfThePictureDoesntCount)
{
    Bitmap picture = Tests::MakeSamplePicture("noise", 32, 32);
    const Bitmap wanted = picture.Crop(3, 4, 6, 6);
    for (std::int32_t i = 3; i < picture.GetSize(); i += 4)
        picture.GetPixels()[i] = 7;
    EXPECT_EQ(Search(wanted, picture).size(), 1U);
}

TEST(ExactSearch, WhatDoesntFitOrDoesntCountIsNowhere)
{
    EXPECT_THAT(Search(MakeFlat(41, 2, 9), MakeFlat(40, 30, 9)), IsEmpty());
    EXPECT_THAT(Search(MakeFlat(2, 31, 9), MakeFlat(40, 30, 9)), IsEmpty());
    EXPECT_THAT(Search(MakeFlat(2, 2, 0), MakeFlat(40, 30, 0)), IsEmpty());
}

} // namespace
} // namespace Orvik::Data
