// Runs of the program in a process of its own, whose files are looked at from outside: a child has this process's
// directories here.
#include "Tests/Application/ApplicationFixture.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::SnipBench
{
namespace
{

using System::Desktop::Window;
using testing::HasSubstr;

using ApplicationLinuxDeathTest = ApplicationTest;

// The list of annotations lasts as long as the process.
TEST_F(ApplicationLinuxDeathTest, AnAnnotationLeavesAFileOfRectangles)
{
    UseOutput();
    AddArguments({"-a", "true"});
    Drag({10, 20}, {110, 70});
    Drag({20, 30}, {40, 50});
    Escape();
    EXPECT_EXIT(std::exit(Run()), testing::ExitedWithCode(0), "");
    std::string text;
    for (const auto& file : ListFiles(output.GetPath()))
    {
        if (file.extension() == ".json")
            text += Tests::ReadText(file);
    }
    EXPECT_THAT(text, HasSubstr("\"xmin\": 10,"));
    EXPECT_THAT(text, HasSubstr("\"xmin\": 20,"));
}

TEST_F(ApplicationLinuxDeathTest, ALostDisplayEndsARunAtOnceAndWithSuccess)
{
    UseOutput();
    Drag({10, 20}, {110, 70});
    desktop.messages.emplace_back([this](Window& /*window*/) { running.load()->OnDisplayLost(); });
    EXPECT_EXIT(std::exit(100 + Run()), testing::ExitedWithCode(0), "");
    EXPECT_EQ(ListFiles(output.GetPath()).size(), 2U) << "what was saved before is there";
}

} // namespace
} // namespace Orvik::SnipBench
