// What a configuration adds, from the command line to the files; input and screen are values.
#include "Tests/Application/ApplicationFixture.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace Orvik::SnipBench
{
namespace
{

using System::Desktop::KeyCode;
using System::Desktop::Window;
using System::Multimedia::Bitmap;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class Switches : public ApplicationTest
{
protected:
    Switches()
    {
        UseOutput();
        ForgetAnnotations();
    }
    ~Switches() override { ForgetAnnotations(); }

    /// The list of annotations lasts as long as the process.
    void ForgetAnnotations() const
    {
        while (TakeAnnotationBack({output.GetPath(), "png", false, nullptr}))
        {
        }
    }

    void Configure(const std::string& section)
    {
        AddArguments({"-cj", R"({"configuration": {"SnipBench": )" + section + "}}"});
    }

    void Tap(KeyCode key)
    {
        Key(key, true);
        Key(key, false);
    }

    void Check(const std::function<void()>& check)
    {
        desktop.messages.emplace_back([check](Window&) { check(); });
    }

    [[nodiscard]] std::size_t CountFiles() const { return ListFiles(output.GetPath()).size(); }

    [[nodiscard]] std::string ReadJson() const
    {
        for (const auto& file : ListFiles(output.GetPath()))
        {
            if (file.extension() == ".json")
                return Tests::ReadText(file);
        }
        return {};
    }

    [[nodiscard]] Bitmap LoadImage() const
    {
        Bitmap image;
        for (const auto& file : ListFiles(output.GetPath()))
        {
            if (file.extension() != ".png")
                continue;
            EXPECT_TRUE(image.Load(file.string()));
        }
        return image;
    }

    /// A picture of 50 by 40 pixels in a file.
    void UsePicture()
    {
        Bitmap picture(50, 40, 32);
        std::fill_n(picture.GetPixels(), picture.GetSize(), std::uint8_t{77});
        const std::string path = (home.GetPath() / "picture.png").string();
        ASSERT_TRUE(picture.SavePng(path));
        AddArguments({"-f", path});
    }
};

TEST_F(Switches, BackspaceRemovesTheLastSnipsTwoFiles)
{
    Configure(R"({"undo": true})");
    Drag({10, 20}, {40, 30});
    Drag({10, 20}, {60, 30});
    Check([this] { EXPECT_EQ(CountFiles(), 4U); });
    Tap(KeyCode::Backspace);
    Check(
        [this]
        {
            EXPECT_EQ(CountFiles(), 2U);
            EXPECT_EQ(LoadImage().GetWidth(), 30) << "the first one is left";
        });
    Tap(KeyCode::Backspace);
    Check([this] { EXPECT_EQ(CountFiles(), 0U); });
    Tap(KeyCode::Backspace);
    Drag({10, 20}, {70, 30});
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(CountFiles(), 2U);
    EXPECT_EQ(LoadImage().GetWidth(), 60);
}

TEST_F(Switches, WithoutUndoBackspaceDoesNothing)
{
    Drag({10, 20}, {40, 30});
    Tap(KeyCode::Backspace);
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(CountFiles(), 2U);
}

TEST_F(Switches, AFileThatIsGoneAlreadyIsNoMistake)
{
    Configure(R"({"undo": true})");
    Drag({10, 20}, {40, 30});
    Check(
        [this]
        {
            for (const auto& file : ListFiles(output.GetPath()))
                std::filesystem::remove(file);
        });
    Tap(KeyCode::Backspace);
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(ReadLog(), Not(HasSubstr("Error")));
}

TEST_F(Switches, BackspaceTakesAnAnnotationOutOfTheFile)
{
    AddArguments({"-a", "true"});
    Configure(R"({"undo": true, "labels": ["button", "field \u00FC"]})");
    Drag({10, 20}, {40, 30});
    Tap(KeyCode::Digit2);
    Drag({50, 20}, {60, 30});
    Check(
        [this]
        {
            EXPECT_THAT(ReadJson(), HasSubstr("            },\n            \"label\": \"button\"\n        },"));
            EXPECT_THAT(ReadJson(), HasSubstr("\"label\": \"field \\u00FC\"")) << "the file is ASCII";
        });
    Tap(KeyCode::Backspace);
    Check(
        [this]
        {
            EXPECT_EQ(CountFiles(), 2U);
            EXPECT_THAT(ReadJson(), HasSubstr("\"xmin\": 10,"));
            EXPECT_THAT(ReadJson(), Not(HasSubstr("\"xmin\": 50,")));
        });
    Tap(KeyCode::Backspace);
    Check([this] { EXPECT_EQ(CountFiles(), 0U) << "no file has no annotation"; });
    Drag({70, 20}, {80, 30});
    Check(
        [this]
        {
            EXPECT_EQ(CountFiles(), 2U);
            EXPECT_THAT(ReadJson(), HasSubstr("\"xmin\": 70,"));
        });
    Escape();
    EXPECT_EQ(Run(), 0);
}

TEST_F(Switches, WithLabelsAPolygonsRingIsKept)
{
    AddArguments({"-a", "true"});
    Configure(R"({"mode": "Polygon", "undo": true, "labels": ["bed"]})");
    for (const System::Math::Point corner : {System::Math::Point{50, 20}, {120, 20}, {50, 70}, {52, 22}})
    {
        Move(corner);
        Button(1, true);
        Button(1, false);
    }
    Check(
        [this]
        {
            EXPECT_THAT(ReadJson(), EndsWith(R"(            },
            "label": "bed",
            "polygon": [
                {
                    "x": 50,
                    "y": 20
                },
                {
                    "x": 120,
                    "y": 20
                },
                {
                    "x": 50,
                    "y": 70
                },
                {
                    "x": 50,
                    "y": 20
                }
            ]
        }
    ]
})"));
        });
    Tap(KeyCode::Backspace);
    Escape();
    EXPECT_EQ(Run(), 0);
}

TEST_F(Switches, ASnipHasNoLabel)
{
    Configure(R"({"labels": ["button"]})");
    Drag({10, 20}, {40, 30});
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(ReadJson(), Not(HasSubstr("label")));
}

TEST_F(Switches, ARegionIsDeliveredAtOnce)
{
    Configure(R"({"region": {"x": 10, "y": 20, "width": 30, "height": 15}})");
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(printed, EndsWith(MakeCodeObject("Success", 0)));
    EXPECT_THAT(desktop.windowCalls, IsEmpty()) << "no overlay";
    EXPECT_EQ(CountFiles(), 2U);
    const Bitmap image = LoadImage();
    ASSERT_EQ(image.GetWidth(), 30);
    ASSERT_EQ(image.GetHeight(), 15);
    EXPECT_EQ(image.GetPixels()[0], 10);
    EXPECT_EQ(image.GetPixels()[1], 20);
    EXPECT_EQ(image.GetPixels()[3], 255);
}

TEST_F(Switches, AnEmptyRegionIsTheWholePicture)
{
    Configure(R"({"region": {}})");
    AddArguments({"-a", "true"});
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(LoadImage().GetWidth(), 200);
    EXPECT_THAT(ReadJson(), HasSubstr("\"xmax\": 200,"));
}

TEST_F(Switches, ARegionCutsAFileWithoutADisplay)
{
    desktop.displays.clear();
    desktop.captureObstacle = "No screen";
    UsePicture();
    Configure(R"({"region": {"x": 0, "y": 0, "width": 50, "height": 39}})");
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(LoadImage().GetHeight(), 39);
    EXPECT_THAT(desktop.captures, IsEmpty());
}

TEST_F(Switches, ARegionThatDoesNotLieWithinIsAWrongParameter)
{
    UsePicture();
    Configure(R"({"region": {"x": 1, "y": 0, "width": 50, "height": 40}})");
    EXPECT_EQ(Run(), -1);
    EXPECT_THAT(printed, EndsWith(MakeCodeObject("Wrong Parameter(s)", -1)));
    EXPECT_THAT(ReadLog(), HasSubstr(" | SnipBench] Error: The region (1,0 50x40) doesn't lie within the picture of "
                                     "50x40 pixels.\n"));
    EXPECT_EQ(CountFiles(), 0U);
}

class WrongRegion : public Switches, public testing::WithParamInterface<const char*>
{
};

TEST_P(WrongRegion, IsRefused)
{
    UsePicture();
    Configure(std::string(R"({"region": )") + GetParam() + "}");
    EXPECT_EQ(Run(), -1);
    EXPECT_EQ(CountFiles(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Edges, WrongRegion,
                         testing::Values(R"({"x": -1, "y": 0, "width": 5, "height": 5})",
                                         R"({"x": 0, "y": -1, "width": 5, "height": 5})",
                                         R"({"x": 0, "y": 36, "width": 5, "height": 5})",
                                         R"({"x": 0, "y": 0, "width": 0, "height": 5})",
                                         R"({"x": 0, "y": 0, "width": 5, "height": -5})",
                                         R"({"x": 9223372036854775807, "y": 0, "width": 5, "height": 5})",
                                         R"({"x": 1, "y": 0, "width": 9223372036854775807, "height": 5})"));

TEST_F(Switches, ARegionOfAScreenThatCannotBeCopiedIsAFailure)
{
    desktop.captureSucceeds = false;
    Configure(R"({"region": {}})");
    EXPECT_EQ(Run(), -3);
    EXPECT_THAT(ReadLog(), HasSubstr(" | Graphics] Error: Failed to get display capture.\n"));
    EXPECT_EQ(CountFiles(), 0U);
}

TEST_F(Switches, ARunThatIsAskedToEndWhileItCopiesTheScreenEndsAsAnyOther)
{
    desktop.captureSucceeds = false;
    desktop.onCapture = [] { System::Runtime::Application::RequestShutdown(); };
    Configure(R"({"region": {}})");
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(printed, EndsWith(MakeCodeObject("Success", 0)));
    EXPECT_EQ(CountFiles(), 0U);
}

TEST_F(Switches, TheDisplayIsTheOneThatIsNamed)
{
    AddDisplay(200, 0, 120, 90);
    desktop.displays.back().name = "Second";
    Configure(R"({"display": "Second", "region": {}})");
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(LoadImage().GetWidth(), 120);
}

TEST_F(Switches, OrTheOneOfThatNumber)
{
    AddDisplay(200, 0, 120, 90);
    Configure(R"({"display": 2})");
    Move({210, 10});
    Button(1, true);
    Move({230, 30});
    Button(1, false);
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(LoadImage().GetWidth(), 20);
    EXPECT_THAT(desktop.captures, testing::ElementsAre(System::Math::Rectangle{200, 0, 320, 90}));
}

TEST_F(Switches, AnUnknownDisplayEndsTheRunAsAMissingOne)
{
    Configure(R"({"display": "Third"})");
    EXPECT_EQ(Run(), -3);
    EXPECT_THAT(printed, EndsWith(MakeCodeObject("Failed to initialize systems", -3)));
    EXPECT_THAT(ReadLog(), HasSubstr(" | SnipBench] Error: No display is named 'Third'.\n"));
    EXPECT_THAT(desktop.windowCalls, IsEmpty());
}

TEST_F(Switches, AndSoDoesAnUnknownNumber)
{
    Configure(R"({"display": 70000})");
    EXPECT_EQ(Run(), -3);
    EXPECT_THAT(ReadLog(), HasSubstr(" | SnipBench] Error: No valid display info for valid display id 70000.\n"));
}

} // namespace
} // namespace Orvik::SnipBench
