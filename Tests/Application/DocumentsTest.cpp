// The pages in Docs against the program that they are about.
#include "Application/Options.h"
#include "Application/ReturnCodes.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Tests/Support/BinaryFile.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

namespace Orvik::SnipBench
{
namespace
{

using testing::HasSubstr;

std::vector<std::filesystem::path> ListPages()
{
    std::vector<std::filesystem::path> pages = {"README.md"};
    for (const auto& entry : std::filesystem::directory_iterator("Docs"))
        if (entry.path().extension() == ".md")
            pages.push_back(entry.path());
    return pages;
}

TEST(Documents, EveryLinkLeadsToAFile)
{
    const std::regex link(R"(\]\(([^)#]+)\))");
    std::size_t count = 0;
    for (const std::filesystem::path& page : ListPages())
    {
        const std::string text = Tests::ReadText(page);
        for (std::sregex_iterator match(text.begin(), text.end(), link), end; match != end; ++match)
        {
            const std::string target = (*match)[1];
            if (target.starts_with("http"))
                continue;
            EXPECT_TRUE(std::filesystem::exists(page.parent_path() / target)) << page << ": " << target;
            ++count;
        }
    }
    EXPECT_GT(count, 20U);
}

TEST(Documents, EveryPictureAndEveryPageIsLinked)
{
    std::string all;
    for (const std::filesystem::path& page : ListPages())
        all += Tests::ReadText(page);
    for (const char* folder : {"Docs", "Docs/Pictures", "Docs/Schemas", "Docs/Examples"})
        for (const auto& entry : std::filesystem::directory_iterator(folder))
        {
            if (entry.is_regular_file())
            {
                EXPECT_THAT(all, HasSubstr("/" + entry.path().filename().string() + ")"));
            }
        }
}

TEST(Documents, TheGuideListsTheOptionsAsTheyAre)
{
    const std::string guide = Tests::ReadText("Docs/UserGuide.md");
    System::Runtime::CommandLine commandLine;
    DeclareOptions(commandLine);
    std::size_t previous = 0;
    for (const auto& option : commandLine.options)
    {
        const std::size_t row = guide.find("\n| `-" + option.name + "` | `-" + option.shortName + "` | ");
        ASSERT_NE(row, std::string::npos) << option.name;
        EXPECT_GT(row, previous) << option.name;
        previous = row;
        const std::string line = guide.substr(row + 1, guide.find('\n', row + 1) - row);
        EXPECT_EQ(line.find("` | |") == std::string::npos, option.hasValue) << line;
        if (!option.defaultValue.empty())
        {
            EXPECT_THAT(line, HasSubstr(" | `" + option.defaultValue + "` | "));
        }
    }
}

TEST(Documents, TheExitCodesAreListedAsTheyAre)
{
    const std::string page = Tests::ReadText("Docs/Scripting.md");
    ReturnCodeRegistry registry;
    RegisterReturnCodes(registry);
    for (const std::string_view name : {ReturnCodeName::Success, ReturnCodeName::WrongParameters,
                                        ReturnCodeName::LoadFileFailed, ReturnCodeName::InitializeSystemsFailed,
                                        ReturnCodeName::CreateWindowFailed, ReturnCodeName::InitializeRendererFailed})
    {
        std::int32_t code = 1;
        ASSERT_TRUE(registry.FindCode(0, name, code)) << name;
        const int seenByShell = code & 0xFF;
        EXPECT_THAT(page, HasSubstr("\n| " + std::to_string(code) + " | " + std::to_string(seenByShell) + " | `" +
                                    std::string(name) + "` | "));
    }
}

/// That line of a text, counted from 1; empty beyond its end.
std::string GetLine(const std::string& text, int number)
{
    std::istringstream lines(text);
    std::string line;
    for (int count = 0; count < number; ++count)
        if (!std::getline(lines, line))
            return {};
    return line;
}

// What a report names is as it is today: the line has that assertion, or throws that exception.
TEST(Documents, TheReportsPointToTheirPlacesInTheSources)
{
    const std::string page = Tests::ReadText("Docs/Logs.md");
    const std::regex report(R"((Assertion|Exception): (?:Orvik::)?(\w+)\n[^]*?\[0\]: (/\S+) at (\d+): (\w+)\n)");
    std::size_t count = 0;
    for (std::sregex_iterator match(page.begin(), page.end(), report), end; match != end; ++match)
    {
        SCOPED_TRACE((*match)[0]);
        const std::string source = Tests::ReadText("Source" + (*match)[3].str());
        const int number = std::stoi((*match)[4]);
        const std::string line = GetLine(source, number);
        const std::string name = (*match)[2];
        if ((*match)[1] == "Assertion")
        {
            EXPECT_THAT(line, HasSubstr("ORVIK_ASSERT(" + name + ","));
        }
        else
        {
            EXPECT_THAT(line, HasSubstr("ORVIK_HERE"));
            EXPECT_THAT(GetLine(source, number - 1) + line, HasSubstr(name + "("));
        }
        EXPECT_THAT(source, HasSubstr((*match)[5].str() + "("));
        ++count;
    }
    EXPECT_EQ(count, 2U);
}

} // namespace
} // namespace Orvik::SnipBench
