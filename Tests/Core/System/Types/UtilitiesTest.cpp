#include "Core/System/Types/Utilities.h"
#include "Tests/Support/AssertionTrap.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace Orvik::System::Types
{
namespace
{

constexpr const char* s_minCondition = "value >= validMinValue";
constexpr const char* s_minMessage = "Value must be equal or greater than the target type's minimum value";
constexpr const char* s_maxCondition = "value <= validMaxValue";
constexpr const char* s_maxMessage = "Value must be equal or smaller than the target type's minimum value";

TEST(SafeCast, SignedToSigned)
{
    EXPECT_EQ(SafeCast<std::int16_t>(std::int32_t{32767}), 32767);
    EXPECT_EQ(SafeCast<std::int16_t>(std::int32_t{-32768}), -32768);
    EXPECT_ASSERTION((void)SafeCast<std::int16_t>(std::int32_t{32768}), s_maxCondition, s_maxMessage);
    EXPECT_ASSERTION((void)SafeCast<std::int16_t>(std::int32_t{-32769}), s_minCondition, s_minMessage);
    EXPECT_ASSERTION((void)SafeCast<std::int8_t>(INT64_MIN), s_minCondition, s_minMessage);
    EXPECT_ASSERTION((void)SafeCast<std::int8_t>(INT64_MAX), s_maxCondition, s_maxMessage);
}

TEST(SafeCast, SignedToUnsigned)
{
    EXPECT_EQ(SafeCast<std::uint16_t>(std::int32_t{0}), 0);
    EXPECT_EQ(SafeCast<std::uint16_t>(std::int32_t{65535}), 65535);
    EXPECT_ASSERTION((void)SafeCast<std::uint16_t>(std::int32_t{65536}), s_maxCondition, s_maxMessage);
    EXPECT_ASSERTION((void)SafeCast<std::uint16_t>(std::int32_t{-1}), s_minCondition, s_minMessage);
    EXPECT_ASSERTION((void)SafeCast<std::uint64_t>(std::int32_t{-1}), s_minCondition, s_minMessage);
    EXPECT_EQ(SafeCast<std::uint64_t>(INT64_MAX), 0x7FFFFFFFFFFFFFFFU);
}

TEST(SafeCast, UnsignedToSigned)
{
    EXPECT_EQ(SafeCast<std::int16_t>(std::uint32_t{32767}), 32767);
    EXPECT_EQ(SafeCast<std::int64_t>(std::uint32_t{4294967295}), 4294967295);
    EXPECT_ASSERTION((void)SafeCast<std::int16_t>(std::uint32_t{32768}), s_maxCondition, s_maxMessage);
    EXPECT_ASSERTION((void)SafeCast<std::int32_t>(std::uint32_t{4294967295}), s_maxCondition, s_maxMessage);
    EXPECT_ASSERTION((void)SafeCast<std::int64_t>(UINT64_MAX), s_maxCondition, s_maxMessage);
}

TEST(SafeCast, UnsignedToUnsigned)
{
    EXPECT_EQ(SafeCast<std::uint16_t>(std::uint32_t{65535}), 65535);
    EXPECT_EQ(SafeCast<std::uint64_t>(std::uint8_t{255}), 255U);
    EXPECT_ASSERTION((void)SafeCast<std::uint16_t>(std::uint32_t{65536}), s_maxCondition, s_maxMessage);
    EXPECT_ASSERTION((void)SafeCast<std::uint32_t>(UINT64_MAX), s_maxCondition, s_maxMessage);
}

TEST(SafeCast, IsAConstantExpression)
{
    static_assert(SafeCast<std::uint8_t>(255) == 255);
    static_assert(SafeCast<std::int8_t>(-128L) == -128);
}

} // namespace
} // namespace Orvik::System::Types
