#include "Core/System/Desktop/KeyCode.h"

#include "Tests/Support/KeyRows.h"

#include <gtest/gtest.h>
#include <iterator>

namespace Orvik::System::Desktop
{

TEST(KeyCode, TheNumbersAreTheDocumentedOnes)
{
    ASSERT_EQ(std::size(Tests::KeyRows), 152U);
    ASSERT_EQ(KeyCodeCount, 152U);
    for (const Tests::KeyRow& row : Tests::KeyRows)
        EXPECT_EQ(static_cast<std::uint32_t>(row.key), row.code);
}

} // namespace Orvik::System::Desktop
