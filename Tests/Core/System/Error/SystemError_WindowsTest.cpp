#include "Core/System/Error/SystemError.h"

#include "Systems/Windows/WindowsHeaders.h"
#include "Tests/Support/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace Orvik::System::Error
{
namespace
{

TEST(SystemErrorWindows, IsTheSystemsTextAndTheCode)
{
    SetLastError(0);
    EXPECT_EQ(FormatLastError(), "None (0)");
    for (const auto& [code, suffix] : {std::pair{5U, " \\(5\\)"}, std::pair{1223U, " \\(4C7\\)"}})
    {
        SetLastError(code);
        EXPECT_THAT(FormatLastError(), Tests::MatchesPattern("[^\\r\\n]*[^.\\r\\n]" + std::string(suffix)));
    }
    SetLastError(0x2FFFFFFF);
    EXPECT_EQ(FormatLastError(), " (2FFFFFFF)") << "a code without a text";
}

} // namespace
} // namespace Orvik::System::Error
