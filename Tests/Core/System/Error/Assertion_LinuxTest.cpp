#include "Core/System/Error/Assertion.h"

#include "Core/System/Error/ErrorHandling.h"
#include "Tests/Core/System/Error/ReportText.h"
#include "Tests/Support/ForkedProcess.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace Orvik::System::Error
{
namespace
{

void Ignore(const AssertionInfo& /*info*/)
{
}

constexpr unsigned s_lineOfTheDeath = __LINE__ + 5;

void FailOnceMore()
{
    const int m_value = 1;
    ORVIK_ASSERT(m_value == 2 || m_value == 3, "Value must be two or three.");
}

using AssertionDeathTest = testing::Test;

TEST(AssertionDeathTest, DefaultHandlerWritesTheReportAndAborts)
{
    EXPECT_EXIT(
        {
            SetAssertionHandler(nullptr);
            std::signal(SIGABRT, SIG_DFL);
            FailOnceMore();
        },
        testing::KilledBySignal(SIGABRT),
        testing::MatchesRegex("Assertion: m_value == 2 \\|\\| m_value == 3\n"
                              "\tMessage: Value must be two or three\\.\n"
                              "\n"
                              "Callstack:\n"
                              "\t\\[0\\]: \\./Tests/Core/System/Error/Assertion_LinuxTest\\.cpp at " +
                              std::to_string(s_lineOfTheDeath) + ": FailOnceMore\n"));
}

TEST(AssertionDeathTest, HandlerThatReturnsEndsInThePlatformsAssertion)
{
    EXPECT_EXIT(
        {
            SetAssertionHandler(&Ignore);
            std::signal(SIGABRT, SIG_DFL);
            FailOnceMore();
        },
        testing::KilledBySignal(SIGABRT),
        testing::MatchesRegex(
            ".*: \\./Tests/Core/System/Error/Assertion_LinuxTest\\.cpp:" + std::to_string(s_lineOfTheDeath) +
            ": FailOnceMore: "
            "Assertion `\\(m_value == 2 \\|\\| m_value == 3\\)' failed\\.\n"));
}

TEST(AssertionReport, OfAnExceptionsHandlerSaysNothingOfTheException)
{
    const Tests::ForkedResult result = Tests::RunForked(
        []
        {
            ErrorHandling::GetInstance();
            try
            {
                throw std::runtime_error("handled just now");
            }
            catch (const std::exception&)
            {
                FailOnceMore();
            }
            return 0;
        });
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(Tests::Normalize(result.error),
              "Assertion: m_value == 2 || m_value == 3\n\tMessage: Value must be two or three.\n\nCallstack:\n"
              "\t[0]: ./Tests/Core/System/Error/Assertion_LinuxTest.cpp at 12: FailOnceMore\n");
}

} // namespace
} // namespace Orvik::System::Error
