#include "Core/System/Text/CharacterArray.h"

#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Constexpr
{
namespace
{

template <CharacterArray<128> Name>
struct Named
{
    static constexpr const char* s_name = Name.characters;
};

TEST(CharacterArray, CarriesATextAsATemplateArgument)
{
    EXPECT_STREQ(Named<"LogSystem">::s_name, "LogSystem");
    static_assert(std::is_same_v<Named<"a">, Named<"a">>);
    static_assert(!std::is_same_v<Named<"a">, Named<"b">>);
}

TEST(CharacterArray, IsZeroAfterItsText)
{
    constexpr CharacterArray<8> text("abc");
    EXPECT_EQ(std::string(text.characters, sizeof text.characters), std::string("abc\0\0\0\0\0", 8));
}

TEST(CharacterArray, HoldsATextOfItsWholeCapacity)
{
    constexpr CharacterArray<4> text("abc");
    EXPECT_STREQ(text.characters, "abc");
    static_assert(!std::is_constructible_v<CharacterArray<4>, const char(&)[5]>);
}

} // namespace
} // namespace Orvik::System::Constexpr
