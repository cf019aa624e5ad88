// Runs that find no X server.
#include "Tests/EndToEnd/ProgramTest.h"
#include "Tests/Support/Desktop/Picture.h"

namespace Orvik::Tests
{
namespace
{

constexpr int s_initializeSystemsFailed = 253; // -3 in the low byte

class NoDisplay : public ProgramTest
{
protected:
    void ExpectRefused(const Arguments& arguments) const
    {
        const auto start = std::chrono::steady_clock::now();
        ExpectAnswer(Run(arguments), s_initializeSystemsFailed, Answer::InitializeSystemsFailed);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    }
};

TEST_F(NoDisplay, WithoutTheVariable)
{
    ExpectRefused({});
    ExpectRefused({"-s", "true"});
}

TEST_F(NoDisplay, WithAnEmptyVariable)
{
    m_environment["DISPLAY"] = "";
    ExpectRefused({});
}

TEST_F(NoDisplay, WithAServerThatIsNotThere)
{
    m_environment["DISPLAY"] = ":60123";
    ExpectRefused({});
}

TEST_F(NoDisplay, WithATextThatNamesNoServer)
{
    m_environment["DISPLAY"] = "no display";
    ExpectRefused({});
}

TEST_F(NoDisplay, ADelayIsNotWaitedFor)
{
    ExpectRefused({"-d", "5000"});
}

TEST_F(NoDisplay, APictureThatCanBeLoadedMakesNoDifference)
{
    SavePng(MakeTestPicture(40, 30), m_installation.GetWork() / "picture.png");
    ExpectRefused({"-f", "picture.png"});
}

TEST_F(NoDisplay, TheLogSaysWhy)
{
    const ChildResult result = Run({});
    EXPECT_NE(result.standardOutput.find("No valid display info for valid display id 65535."), std::string::npos)
        << result.standardOutput;
    const std::vector<std::filesystem::path> logs = ListLogs(m_installation.GetLogs());
    ASSERT_EQ(logs.size(), 1U);
    EXPECT_NE(ReadText(logs.front()).find("No valid display info for valid display id 65535."), std::string::npos);
}

} // namespace
} // namespace Orvik::Tests
