#include "Data/Formats/Yaml.h"

#include "Data/Records/Record.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::Data
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Yaml, WhatIsWrittenIsReadBack)
{
    const std::vector<std::string> names = {
        "a", "text field", "\"quoted\" \\", "# no comment", "a: b", "- x", "Men\xC3\xBC", "yes", "1", "'"};
    const std::optional<std::vector<std::string>> read = ReadYamlNames("path: .\n" + MakeYamlNames(names) + "nc: 10\n");
    ASSERT_TRUE(read);
    EXPECT_EQ(*read, names);
    EXPECT_THAT(*ReadYamlNames(MakeYamlNames({})), IsEmpty());
}

TEST(Yaml, AllUsualWaysAreRead)
{
    for (const char* text :
         {"names:\n  0: a\n  1: b c\n", "names:\n- a\n- b c\n", "names:\n  - a # one\n  - 'b c'\n", "names: [a, b c]\n",
          "names: [ 'a' , \"b c\" ] # two\n", "names: {0: a, 1: b c}\n", "names: [a, b c,]\n",
          "names: [a, # one\n        b c] # two\nnc: 2\n", "names: [\r\n  'a',\r\n# between\r\n  \"b c\",\r\n]\r\n",
          "names: {\n0: a,\n1: b c\n}", "# first\nnc: 2\nnames:\r\n  0: a\r\n\r\n  1: b c\r\ntrain: x\r\n"})
    {
        const std::optional<std::vector<std::string>> names = ReadYamlNames(text);
        ASSERT_TRUE(names) << text;
        EXPECT_THAT(*names, ElementsAre("a", "b c")) << text;
    }
    EXPECT_THAT(*ReadYamlNames("names: ['it''s']"), ElementsAre("it's"));
}

TEST(Yaml, OtherWaysAreRefused)
{
    for (const char* text : {"",
                             "nc: 2\n",
                             "names: a\n",
                             "names:\n  1: a\n",
                             "names:\n  0: a\n  2: b\n",
                             "names: [a\n",
                             "names: [a b] c\n",
                             "names: [[a]]\n",
                             "names:\n  0: &x a\n",
                             "names:\n  0: *x\n",
                             "names:\n  0: \"a\n",
                             "names:\n  0: \"\\u0041\"\n",
                             "names:\n  - |\n",
                             "names: {0: a, b}\n",
                             "names: [,]\n",
                             "names: [a,, b]\n",
                             "names: [a\nb]\n",
                             "names: [a] b\n",
                             "names:\n  0:\n",
                             " names: [a]\n",
                             "names:\n  0: \"a\" b\n"})
        EXPECT_FALSE(ReadYamlNames(text)) << text;
}

TEST(Yaml, TheNumberOfNamesHasAnEnd)
{
    std::string text = "names:\n";
    for (std::size_t i = 0; i < s_maxClasses; ++i)
        text += "- a\n";
    EXPECT_TRUE(ReadYamlNames(text));
    EXPECT_FALSE(ReadYamlNames(text + "- a\n"));
}

} // namespace
} // namespace Orvik::Data
