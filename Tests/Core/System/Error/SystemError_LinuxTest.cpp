#include "Core/System/Error/SystemError.h"

#include <cerrno>
#include <clocale>
#include <gtest/gtest.h>

namespace Orvik::System::Error
{
namespace
{

TEST(SystemError, NoErrorIsNone)
{
    errno = 0;
    EXPECT_EQ(FormatLastError(), "None (0)");
}

TEST(SystemError, MessageIsFollowedByTheCodeInUpperCaseHexadecimal)
{
    errno = EACCES;
    EXPECT_EQ(FormatLastError(), "Permission denied (D)");
    errno = ENOENT;
    EXPECT_EQ(FormatLastError(), "No such file or directory (2)");
    errno = EINPROGRESS;
    EXPECT_EQ(FormatLastError(), "Operation now in progress (73)");
    errno = ECANCELED;
    EXPECT_EQ(FormatLastError(), "Operation canceled (7D)");
}

TEST(SystemError, UnknownCodeHasTheSystemsText)
{
    errno = 1223;
    EXPECT_EQ(FormatLastError(), "Unknown error 1223 (4C7)");
}

TEST(SystemError, TextIsReplacedAndReturned)
{
    std::string text = "something before";
    errno = EIO;
    std::string& result = FormatLastError(text);
    EXPECT_EQ(&result, &text);
    EXPECT_EQ(text, "Input/output error (5)");
}

} // namespace
} // namespace Orvik::System::Error
