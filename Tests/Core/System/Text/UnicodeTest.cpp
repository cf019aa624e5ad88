#include "Core/System/Text/Unicode.h"

#include <gtest/gtest.h>

namespace Orvik::System::Text
{
namespace
{

std::wstring Wide(std::initializer_list<std::uint32_t> units)
{
    std::wstring text;
    for (const std::uint32_t unit : units)
    {
        if (sizeof(wchar_t) == 2 && unit >= 0x10000)
        {
            text += static_cast<wchar_t>(0xD800 + ((unit - 0x10000) >> 10));
            text += static_cast<wchar_t>(0xDC00 + ((unit - 0x10000) & 0x3FF));
            continue;
        }
        text += static_cast<wchar_t>(unit);
    }
    return text;
}

TEST(Unicode, AsciiStaysAsItIs)
{
    EXPECT_EQ(ToUtf8(L"SnipBench"), "SnipBench");
    EXPECT_EQ(ToWide("SnipBench"), L"SnipBench");
    EXPECT_EQ(ToUtf8(L""), "");
    EXPECT_EQ(ToWide(""), L"");
}

TEST(Unicode, ZeroCharactersAreText)
{
    EXPECT_EQ(ToUtf8(std::wstring_view(L"a\0b", 3)), std::string("a\0b", 3));
    EXPECT_EQ(ToWide(std::string_view("a\0b", 3)), std::wstring(L"a\0b", 3));
}

TEST(Unicode, EachLengthOfSequenceConvertsAtItsEnds)
{
    struct Case
    {
        std::uint32_t code;
        const char* utf8;
    };
    for (const Case& item :
         {Case{0x7F, "\x7F"}, Case{0x80, "\xC2\x80"}, Case{0x7FF, "\xDF\xBF"}, Case{0x800, "\xE0\xA0\x80"},
          Case{0xD7FF, "\xED\x9F\xBF"}, Case{0xE000, "\xEE\x80\x80"}, Case{0xFFFF, "\xEF\xBF\xBF"},
          Case{0x10000, "\xF0\x90\x80\x80"}, Case{0x10FFFF, "\xF4\x8F\xBF\xBF"}, Case{0x20AC, "\xE2\x82\xAC"}})
    {
        EXPECT_EQ(ToUtf8(Wide({item.code})), item.utf8) << std::hex << item.code;
        EXPECT_EQ(ToWide(item.utf8), Wide({item.code})) << std::hex << item.code;
    }
}

TEST(Unicode, SurrogatePairIsOneCharacter)
{
    EXPECT_EQ(ToUtf8(Wide({0xD83D, 0xDE00})), "\xF0\x9F\x98\x80");
    EXPECT_EQ(ToUtf8(Wide({'a', 0xD800, 0xDC00, 'b'})), "a\xF0\x90\x80\x80"
                                                        "b");
    EXPECT_EQ(ToUtf8(Wide({0xDBFF, 0xDFFF})), "\xF4\x8F\xBF\xBF");
}

TEST(Unicode, LoneSurrogateBecomesTheReplacement)
{
    EXPECT_EQ(ToUtf8(Wide({0xD800})), "\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(Wide({0xDC00})), "\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(Wide({0xD800, 'a'})), "\xEF\xBF\xBD"
                                           "a");
    EXPECT_EQ(ToUtf8(Wide({0xDC00, 0xD800})), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(Wide({0xD800, 0xD800, 0xDC00})), "\xEF\xBF\xBD\xF0\x90\x80\x80");
}

TEST(Unicode, CodesBeyondTheLastBecomeTheReplacement)
{
    if (sizeof(wchar_t) == 2)
        GTEST_SKIP() << "No such code fits here.";
    EXPECT_EQ(ToUtf8(Wide({0x110000})), "\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(Wide({0xFFFFFFFF})), "\xEF\xBF\xBD");
}

TEST(Unicode, EachByteOfNoSequenceBecomesAReplacement)
{
    const std::wstring replacement = Wide({0xFFFD});
    const std::wstring two = replacement + replacement;
    const std::wstring three = two + replacement;
    EXPECT_EQ(ToWide("\x80"), replacement);           // continuation without a lead
    EXPECT_EQ(ToWide("\xFF"), replacement);           // never part of UTF-8
    EXPECT_EQ(ToWide("\xC0\x80"), two);               // overlong zero
    EXPECT_EQ(ToWide("\xC1\xBF"), two);               // overlong 0x7F
    EXPECT_EQ(ToWide("\xE0\x80\x80"), three);         // overlong in three
    EXPECT_EQ(ToWide("\xE0\x9F\xBF"), three);         // overlong 0x7FF
    EXPECT_EQ(ToWide("\xED\xA0\x80"), three);         // a surrogate
    EXPECT_EQ(ToWide("\xED\xBF\xBF"), three);         // the last surrogate
    EXPECT_EQ(ToWide("\xF0\x8F\xBF\xBF"), two + two); // overlong 0xFFFF
    EXPECT_EQ(ToWide("\xF4\x90\x80\x80"), two + two); // beyond the last code
    EXPECT_EQ(ToWide("\xF5\x80\x80\x80"), two + two); // no lead byte
    EXPECT_EQ(ToWide("a\xE2\x82"), L"a" + two);       // cut off
    EXPECT_EQ(ToWide("\xE2\x82z"), two + L"z");       // broken off
    EXPECT_EQ(ToWide("\xE2\xE2\x82\xAC"), replacement + L"\u20AC");
    EXPECT_EQ(ToWide("\xF0\x9F\x98"), three);
    EXPECT_EQ(ToWide("\xC3"), replacement);
}

} // namespace
} // namespace Orvik::System::Text
