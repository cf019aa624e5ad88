#include "Data/Search/Correlation.h"

#include "Data/Search/TileScores.h"
#include "Tests/Support/SamplePictures.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace Orvik::Data
{
namespace
{

using System::Multimedia::Bitmap;

/// The same with noise of up to `strength` on each channel.
Bitmap AddNoise(Bitmap bitmap, int strength)
{
    std::mt19937 random(11);
    for (std::int32_t i = 0; i < bitmap.GetSize(); ++i)
        if (i % 4 != 3)
        {
            const int noise = static_cast<int>(random() % static_cast<unsigned>(2 * strength + 1)) - strength;
            bitmap.GetPixels()[i] = static_cast<std::uint8_t>(std::clamp(bitmap.GetPixels()[i] + noise, 0, 255));
        }
    return bitmap;
}

/// Everything outside of an ellipse doesn't count.
void MaskEllipse(Bitmap& bitmap)
{
    const double across = bitmap.GetWidth() / 2.0;
    const double down = bitmap.GetHeight() / 2.0;
    for (std::int32_t y = 0; y < bitmap.GetHeight(); ++y)
        for (std::int32_t x = 0; x < bitmap.GetWidth(); ++x)
        {
            const double dx = (x + 0.5 - across) / across;
            const double dy = (y + 0.5 - down) / down;
            if (dx * dx + dy * dy > 1)
                std::fill_n(bitmap.GetPixels() + y * bitmap.GetStride() + x * 4, 4, std::uint8_t{0});
        }
}

/// By the definition, in one channel after the other, of those pixels that count.
double CorrelatePlainly(const Bitmap& wanted, const Bitmap& picture, std::int32_t left, std::int32_t top)
{
    double product = 0;
    double ownSpread = 0;
    double spread = 0;
    for (std::int32_t channel = 0; channel < 3; ++channel)
    {
        std::vector<std::pair<double, double>> values;
        for (std::int32_t y = 0; y < wanted.GetHeight(); ++y)
            for (std::int32_t x = 0; x < wanted.GetWidth(); ++x)
            {
                const std::uint8_t* const own = wanted.GetPixels() + y * wanted.GetStride() + x * 4;
                if (own[3] != 0)
                    values.emplace_back(
                        own[channel], picture.GetPixels()[(top + y) * picture.GetStride() + (left + x) * 4 + channel]);
            }
        double ownMean = 0;
        double mean = 0;
        for (const auto& [own, there] : values)
        {
            ownMean += own / static_cast<double>(values.size());
            mean += there / static_cast<double>(values.size());
        }
        for (const auto& [own, there] : values)
        {
            product += (own - ownMean) * (there - mean);
            ownSpread += (own - ownMean) * (own - ownMean);
            spread += (there - mean) * (there - mean);
        }
    }
    return ownSpread > 0 && spread > 0 ? product / std::sqrt(ownSpread * spread) : 0.0;
}

TEST(Correlation, TilesGiveTheScoresOfTheDefinition)
{
    const Bitmap picture = Tests::MakeSamplePicture("photo", 600, 300);
    for (const bool isMasked : {false, true})
    {
        Bitmap wanted = AddNoise(picture.Crop(200, 100, 31, 22), 20);
        if (isMasked)
            MaskEllipse(wanted);
        const SearchTemplate searched = MakeSearchTemplate(wanted);
        const SearchPicture large = MakeSearchPicture(picture);
        const TileScores tiles(searched, large);
        std::size_t covered = 0;
        for (const auto& pair : tiles.GetPairs())
        {
            const TileScores::Scores scores = tiles.Correlate(pair);
            for (std::size_t part = 0; part < pair.size(); ++part)
            {
                covered += scores[part].size();
                for (std::size_t i = 0; i < scores[part].size(); i += 997)
                {
                    const auto width = static_cast<std::size_t>(pair[part].width);
                    const auto x = pair[part].left + static_cast<std::int32_t>(i % width);
                    const auto y = pair[part].top + static_cast<std::int32_t>(i / width);
                    const double exact = CorrelatePlainly(wanted, picture, x, y);
                    EXPECT_NEAR(scores[part][i], exact, 1e-3) << x << " " << y << " " << isMasked;
                    EXPECT_NEAR(GetCorrelation(searched, large, x, y), exact, 1e-9);
                }
            }
        }
        EXPECT_EQ(covered, std::size_t{600 - 31 + 1} * (300 - 22 + 1));
    }
}

TEST(Correlation, ANoisyTemplateIsFoundWhereItWasCut)
{
    const Bitmap picture = Tests::MakeSamplePicture("interface", 500, 400);
    for (const bool isMasked : {false, true})
    {
        Bitmap wanted = AddNoise(picture.Crop(130, 210, 60, 40), 10);
        if (isMasked)
            MaskEllipse(wanted);
        const std::vector<FoundPlace> places =
            FindSimilar(MakeSearchTemplate(wanted), MakeSearchPicture(picture), 0.8, 5);
        ASSERT_FALSE(places.empty());
        EXPECT_GT(places[0].score, 0.9);
        EXPECT_EQ(places[0].x, 130);
        EXPECT_EQ(places[0].y, 210);
    }
}

TEST(Correlation, ThePicturesEdgesAreReached)
{
    const Bitmap picture = Tests::MakeSamplePicture("noise", 300, 280);
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(280, 0), std::pair(0, 264), std::pair(280, 264)})
    {
        const Bitmap wanted = AddNoise(picture.Crop(x, y, 20, 16), 4);
        const std::vector<FoundPlace> places =
            FindSimilar(MakeSearchTemplate(wanted), MakeSearchPicture(picture), 0.5, 1);
        ASSERT_EQ(places.size(), 1U);
        EXPECT_EQ(places[0].x, x);
        EXPECT_EQ(places[0].y, y);
    }
}

TEST(Correlation, PlacesAreSortedAndLieApart)
{
    const Bitmap picture = Tests::MakeSamplePicture("text", 400, 300);
    const Bitmap wanted = AddNoise(picture.Crop(100, 100, 24, 12), 10);
    const std::vector<FoundPlace> places = FindSimilar(MakeSearchTemplate(wanted), MakeSearchPicture(picture), 0.3, 20);
    ASSERT_GT(places.size(), 1U);
    EXPECT_LE(places.size(), 20U);
    for (std::size_t i = 1; i < places.size(); ++i)
    {
        EXPECT_GE(places[i - 1].score, places[i].score);
        EXPECT_GE(places[i].score, 0.3);
        for (std::size_t k = 0; k < i; ++k)
            EXPECT_TRUE(std::abs(places[i].x - places[k].x) >= 12 || std::abs(places[i].y - places[k].y) >= 6);
    }
}

TEST(Correlation, WhatCannotBeCorrelatedIsSaid)
{
    const SearchPicture picture = MakeSearchPicture(Tests::MakeSamplePicture("photo", 100, 80));
    Bitmap flat(10, 10, 32);
    std::fill_n(flat.GetPixels(), flat.GetSize(), std::uint8_t{200});
    EXPECT_FALSE(CanCorrelate(MakeSearchTemplate(flat), picture));
    std::fill_n(flat.GetPixels(), flat.GetSize(), std::uint8_t{0});
    EXPECT_FALSE(CanCorrelate(MakeSearchTemplate(flat), picture));
    EXPECT_FALSE(CanCorrelate(MakeSearchTemplate(Tests::MakeSamplePicture("photo", 101, 5)), picture));
    EXPECT_TRUE(CanCorrelate(MakeSearchTemplate(Tests::MakeSamplePicture("photo", 100, 80)), picture));
}

} // namespace
} // namespace Orvik::Data
