#include "Data/Records/ClassList.h"

#include "Data/Records/Record.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::Data
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

LoadedClasses Load(const std::string& text)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path path = ClassList::GetPath(directory.GetPath());
    std::ofstream(path, std::ios::binary) << text;
    return LoadClasses(path);
}

TEST(ClassList, TheOrderIsThatOfTheLines)
{
    for (const char* text : {"b\na\nc\n", "b\na\nc", "b\r\na\r\nc\r\n"})
    {
        const LoadedClasses loaded = Load(text);
        EXPECT_EQ(loaded.error, "");
        EXPECT_TRUE(loaded.exists);
        EXPECT_THAT(loaded.classes.GetNames(), ElementsAre("b", "a", "c"));
        EXPECT_EQ(loaded.classes.Find("a"), 1U);
        EXPECT_EQ(loaded.classes.Find("d"), std::nullopt);
        EXPECT_EQ(loaded.classes.MakeText(), "b\na\nc\n");
    }
}

TEST(ClassList, ABrokenListIsRefused)
{
    EXPECT_THAT(Load("a\na\n").error, HasSubstr("line 2"));
    EXPECT_THAT(Load("a\n\nb\n").error, HasSubstr("line 2"));
    EXPECT_THAT(Load("a\x1B\n").error, HasSubstr("line 1"));
}

TEST(ClassList, OneThatIsntThereIsNoError)
{
    const Tests::TemporaryDirectory directory;
    const LoadedClasses loaded = LoadClasses(directory.GetPath() / "classes.txt");
    EXPECT_FALSE(loaded.exists);
    EXPECT_EQ(loaded.error, "");
    EXPECT_EQ(LoadClasses(directory.GetPath()).error, "can't be read");
}

TEST(ClassList, ItHasAnEnd)
{
    ClassList list;
    for (std::size_t i = 0; i < s_maxClasses; ++i)
        ASSERT_TRUE(list.Add(std::to_string(i)));
    EXPECT_FALSE(list.Add("one more"));
    EXPECT_TRUE(list.Add("5"));
}

} // namespace
} // namespace Orvik::Data
