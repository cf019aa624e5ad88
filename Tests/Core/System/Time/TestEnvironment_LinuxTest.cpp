// That the tests run where times and numbers are written in another way than the formats that they check.
#include <cstdlib>
#include <gtest/gtest.h>
#include <locale>
#include <string>

namespace Orvik::System::Time
{
namespace
{

TEST(TestEnvironment, HasItsLocaleWithItsTimeZone)
{
    const char* const zone = std::getenv("TZ");
    if (zone == nullptr || std::string(zone) != "Asia/Kolkata")
        GTEST_SKIP() << "The test wasn't started by ctest.";
    const std::locale locale;
    const auto& numbers = std::use_facet<std::numpunct<char>>(locale);
    EXPECT_EQ(numbers.decimal_point(), ',');
    EXPECT_EQ(numbers.thousands_sep(), '.');
}

} // namespace
} // namespace Orvik::System::Time
