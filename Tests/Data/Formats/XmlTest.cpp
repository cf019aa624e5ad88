#include "Data/Formats/Xml.h"

#include <gtest/gtest.h>

namespace Orvik::Data
{
namespace
{

TEST(Xml, ElementsAndTextsAreRead)
{
    const std::optional<XmlElement> root =
        ReadXml("\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<!-- a > b -->\n<a x=\"1>\" y = '<'>\n  <b>one &amp; two</b>"
                "<c/><b >&#x41;&#228;&#x1F600;&lt;</b ></a>\n<!-- end -->\n");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->name, "a");
    ASSERT_EQ(root->children.size(), 3U);
    EXPECT_EQ(root->GetText("b"), "one & two");
    EXPECT_EQ(root->GetText("c"), "");
    EXPECT_EQ(root->GetText("none"), "");
    EXPECT_EQ(root->children[2].text, "A\xC3\xA4\xF0\x9F\x98\x80<");
}

TEST(Xml, WhatIsntWellFormedIsRefused)
{
    for (const char* text : {"",
                             "text",
                             "<a>",
                             "<a></b>",
                             "<a><b></a></b>",
                             "<a/><b/>",
                             "<a/>x",
                             "<a b></a>",
                             "<a b=1/>",
                             "<a b=\"1></a>",
                             "<a>&other;</a>",
                             "<a>&#0;</a>",
                             "<a>&#xD800;</a>",
                             "<a>&#x110000;</a>",
                             "<a>&amp</a>",
                             "<!-- <a/>",
                             "<a><!-- </a>",
                             "< a/>",
                             "<a>&;</a>",
                             "<a></a",
                             "<a",
                             "<",
                             "<!DOCTYPE a [<!ENTITY x \"y\">]><a>&x;</a>",
                             "<a><![CDATA[x]]></a>"})
        EXPECT_FALSE(ReadXml(text)) << text;
    EXPECT_FALSE(ReadXml(std::string_view("<a/>\0", 5)));
}

TEST(Xml, DepthAndNumberHaveAnEnd)
{
    const auto nest = [](std::size_t depth)
    {
        std::string text;
        for (std::size_t i = 0; i < depth; ++i)
            text += "<a>";
        for (std::size_t i = 0; i < depth; ++i)
            text += "</a>";
        return text;
    };
    EXPECT_TRUE(ReadXml(nest(16)));
    EXPECT_FALSE(ReadXml(nest(17)));
    EXPECT_FALSE(ReadXml(nest(1'000'000)));
    std::string many = "<a>";
    for (int i = 0; i < 300'001; ++i)
        many += "<b/>";
    EXPECT_FALSE(ReadXml(many + "</a>"));
}

TEST(Xml, WhatIsEscapedIsReadBack)
{
    const std::string text = "a<b>&\"'\xC3\xA4]]>";
    EXPECT_EQ(ReadXml("<a>" + EscapeXml(text) + "</a>")->text, text);
}

} // namespace
} // namespace Orvik::Data
