#include "Core/System/Runtime/JsonPattern.h"

#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Runtime
{
namespace
{

TEST(JsonPattern, WhatTheEngineCanDoIsSound)
{
    for (const char* const pattern :
         {"a", "^a$", "a*b+c?", "[a-z]*", "[^\\]]+", "(ab)?", "(a|b)?c", "a|b", "((a))", ".*", "\\(", "(a*b)?", "a?b?",
          "]", "}", "^[^\x01-\x20\x7F]([^\x01-\x1F\x7F]*[^\x01-\x20\x7F])?$"})
        EXPECT_TRUE(IsPatternSound(pattern)) << pattern;
}

// The engine doesn't look whether there is something to join.
TEST(JsonPattern, EmptyPartsAreNot)
{
    for (const char* const pattern :
         {"", "()", "()a", "a()b", "(|a)", "(a|)", "|", "a|", "^", "^$", "[]", "[^", "(", ")", "a)", "(a", "\\", "[\\"})
        EXPECT_FALSE(IsPatternSound(pattern)) << pattern;
}

// It would go in circles, or both ways at each of many forks.
TEST(JsonPattern, RepetitionsOfWhatMayBeEmptyAreNot)
{
    for (const char* const pattern :
         {"*", "^*", "(*a)", "a**", "a?*", "a+?", "(a*)*", "(a)*", "(a)+", "(a?)?", "(a*|b)", "(a|b?)c", "a?|b"})
        EXPECT_FALSE(IsPatternSound(pattern)) << pattern;
}

TEST(JsonPattern, CountsAreNot)
{
    for (const char* const pattern : {"a{2}", "{1,2}", "a{999999999}", "(a{999}){999}"})
        EXPECT_FALSE(IsPatternSound(pattern)) << pattern;
}

// It stops reading in the middle of a character, and at a zero.
TEST(JsonPattern, WhatItWouldNotReadWholeIsNot)
{
    EXPECT_FALSE(IsPatternSound(std::string_view("a\0b", 3)));
    EXPECT_FALSE(IsPatternSound("(a*\xE2"));
    EXPECT_FALSE(IsPatternSound("\xC3\xA4"));
    EXPECT_TRUE(IsPatternSound(std::string(1'000, 'a')));
    EXPECT_FALSE(IsPatternSound(std::string(1'001, 'a')));
}

} // namespace
} // namespace Orvik::System::Runtime
