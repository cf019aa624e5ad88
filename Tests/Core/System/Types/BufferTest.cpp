#include "Core/System/Types/Buffer.h"

#include <array>
#include <gtest/gtest.h>

namespace Orvik::System::Types
{
namespace
{

TEST(Buffer, IsEmptyAtFirst)
{
    constexpr Buffer<unsigned char> buffer;
    EXPECT_EQ(buffer.data, nullptr);
    EXPECT_EQ(buffer.GetSize(), 0U);
}

TEST(Buffer, ViewsMemoryThatItDoesNotOwn)
{
    std::array<unsigned char, 3> memory = {1, 2, 3};
    const Buffer<unsigned char> buffer{memory.data(), memory.size()};
    const Buffer<unsigned char> copy = buffer;
    copy.data[1] = 9;
    EXPECT_EQ(memory[1], 9);
    EXPECT_EQ(copy.GetSize(), 3U);
}

} // namespace
} // namespace Orvik::System::Types
