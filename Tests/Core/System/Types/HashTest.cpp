#include "Core/System/Types/Hash.h"

#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Types
{
namespace
{

TEST(Hash, IsFnv1aOverTheBytes)
{
    static_assert(HashFnv1a("") == 0xCBF29CE484222325);
    EXPECT_EQ(HashFnv1a("a"), 0xAF63DC4C8601EC8CU);
    EXPECT_EQ(HashFnv1a("foobar"), 0x85944171F73967E8U);
}

TEST(Hash, BytesAboveAsciiCountAsUnsigned)
{
    // 0xCBF29CE484222325 ^ 0xFF, times the prime.
    EXPECT_EQ(HashFnv1a("\xFF"), 0xAF64724C8602EB6EU);
}

TEST(Hash, ZeroBytesCount)
{
    EXPECT_NE(HashFnv1a(std::string_view("\0", 1)), HashFnv1a(""));
    EXPECT_NE(HashFnv1a(std::string_view("\0\0", 2)), HashFnv1a(std::string_view("\0", 1)));
}

TEST(Hash, StringHashIsTheSame)
{
    EXPECT_EQ(StringHash()(std::string("foobar")), static_cast<std::size_t>(0x85944171F73967E8));
}

} // namespace
} // namespace Orvik::System::Types
