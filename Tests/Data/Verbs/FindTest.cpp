#include "Tests/Data/Verbs/SampleSet.h"

namespace Orvik::Data
{
namespace
{

using testing::HasSubstr;

class Find : public testing::Test
{
protected:
    Find() { EXPECT_TRUE(m_picture.SavePng(At("picture.png"))); }

    [[nodiscard]] std::string At(const char* name) const
    {
        return System::Text::PathToUtf8(m_directory.GetPath() / name);
    }

    /// Searches for a part of the picture, with each channel changed by so much in places.
    [[nodiscard]] ProgramRun Search(std::uint8_t change, const std::vector<std::string>& options = {}) const
    {
        System::Multimedia::Bitmap part = m_picture.Crop(120, 60, 40, 30);
        for (std::int32_t i = 0; i < part.GetSize(); i += 20)
            part.GetPixels()[i] ^= change;
        EXPECT_TRUE(part.SavePng(At("part.png")));
        std::vector<std::string> words = {"find", At("part.png"), At("picture.png")};
        words.insert(words.end(), options.begin(), options.end());
        return RunWith(words);
    }

    Tests::TemporaryDirectory m_directory;
    System::Multimedia::Bitmap m_picture = Tests::MakeSamplePicture("photo", 300, 200);
};

TEST_F(Find, AnEqualPlaceIsFoundExactly)
{
    const ProgramRun run = Search(0);
    EXPECT_EQ(run.code, ExitCode::Done);
    const rapidjson::Document document = run.Parse();
    ASSERT_TRUE(document.IsObject()) << run.output;
    EXPECT_STREQ(document["method"].GetString(), "exact");
    ASSERT_EQ(document["places"].Size(), 1U);
    const rapidjson::Value& place = document["places"][0];
    EXPECT_EQ(place["x"].GetInt(), 120);
    EXPECT_EQ(place["y"].GetInt(), 60);
    EXPECT_EQ(place["width"].GetInt(), 40);
    EXPECT_EQ(place["height"].GetInt(), 30);
    EXPECT_EQ(place["score"].GetDouble(), 1.0);
}

TEST_F(Find, AnAlikePlaceIsFoundByCorrelation)
{
    const ProgramRun run = Search(16);
    EXPECT_EQ(run.code, ExitCode::Done);
    const rapidjson::Document document = run.Parse();
    ASSERT_TRUE(document.IsObject()) << run.output;
    EXPECT_STREQ(document["method"].GetString(), "correlation");
    ASSERT_GE(document["places"].Size(), 1U);
    EXPECT_EQ(document["places"][0]["x"].GetInt(), 120);
    EXPECT_EQ(document["places"][0]["y"].GetInt(), 60);
    EXPECT_GT(document["places"][0]["score"].GetDouble(), 0.9);
    EXPECT_LT(document["places"][0]["score"].GetDouble(), 1.0);
}

TEST_F(Find, MorePlacesThanTheLimitAreSaid)
{
    System::Multimedia::Bitmap plain;
    plain.SetSize(6, 5, 24);
    std::fill_n(plain.GetPixels(), plain.GetSize(), std::uint8_t{128});
    EXPECT_TRUE(plain.SavePng(At("picture.png")));
    EXPECT_TRUE(plain.Crop(0, 0, 4, 4).SavePng(At("plain.png")));
    constexpr unsigned all = 6;
    for (const unsigned limit : {all - 1, all})
    {
        const ProgramRun run = RunWith({"find", At("plain.png"), At("picture.png"), "--limit", std::to_string(limit)});
        EXPECT_EQ(run.code, ExitCode::Done);
        const rapidjson::Document document = run.Parse();
        ASSERT_TRUE(document.IsObject()) << run.output;
        EXPECT_EQ(document["places"].Size(), limit);
        EXPECT_EQ(document["more"].GetBool(), limit < all);
    }
}

TEST_F(Find, NoPlaceIsTheCodeOne)
{
    for (const ProgramRun& run : {Search(16, {"--exact"}), Search(255, {"--score", "1"})})
    {
        EXPECT_EQ(run.code, ExitCode::Findings);
        const rapidjson::Document document = run.Parse();
        ASSERT_TRUE(document.IsObject()) << run.output;
        EXPECT_EQ(document["places"].Size(), 0U);
        EXPECT_EQ(document["code"].GetInt(), 1);
    }
}

TEST_F(Find, WhatIsNoPictureIsNamed)
{
    const ProgramRun run = RunWith({"find", At("none.png"), At("picture.png")});
    EXPECT_EQ(run.code, ExitCode::CannotRun);
    EXPECT_THAT(run.output, HasSubstr("none.png"));
}

TEST_F(Find, OptionsAreChecked)
{
    for (const char* score : {"0", "1.1", "x", "nan", ""})
        EXPECT_EQ(Search(0, {"--score", score}).code, ExitCode::WrongCall) << score;
    EXPECT_EQ(Search(0, {"--limit", "0"}).code, ExitCode::WrongCall);
}

} // namespace
} // namespace Orvik::Data
