#include "Core/System/Error/Assertion.h"
#include "Tests/Support/AssertionTrap.h"

#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Error
{
namespace
{

int s_calls = 0;

void CountCall(const AssertionInfo& /*info*/)
{
    ++s_calls;
}

/// Installs a handler that returns, and brings the one before back.
class ReturningHandler
{
public:
    ReturningHandler() : m_previous(SetAssertionHandler(&CountCall)) { s_calls = 0; }
    ~ReturningHandler()
    {
        SetAssertionHandler(m_previous);
        SetContinueAfterAssertion(false);
    }
    ReturningHandler(const ReturningHandler&) = delete;
    ReturningHandler& operator=(const ReturningHandler&) = delete;

private:
    AssertionHandler m_previous;
};

constexpr unsigned s_failureLine = __LINE__ + 5;

void FailOnPurpose()
{
    const int m_value = 1;
    ORVIK_ASSERT(m_value == 2 || m_value == 3, "Value must be two or three.");
}

TEST(Assertion, TrueConditionCallsNothing)
{
    const ReturningHandler handler;
    ORVIK_ASSERT(1 + 1 == 2, "Arithmetic must hold.");
    EXPECT_EQ(s_calls, 0);
}

TEST(Assertion, ConditionIsEvaluatedOnce)
{
    const ReturningHandler handler;
    SetContinueAfterAssertion(true);
    int evaluations = 0;
    ORVIK_ASSERT(++evaluations == 0, "Counted.");
    EXPECT_EQ(evaluations, 1);
    EXPECT_EQ(s_calls, 1);
}

TEST(Assertion, HandlerGetsTheConditionAsWrittenAndThePlace)
{
    const Tests::AssertionTrap trap;
    try
    {
        FailOnPurpose();
        ADD_FAILURE() << "No assertion failed.";
    }
    catch (const Tests::AssertionFailure& failure)
    {
        EXPECT_EQ(failure.condition, "m_value == 2 || m_value == 3");
        EXPECT_EQ(failure.message, "Value must be two or three.");
        EXPECT_EQ(failure.line, s_failureLine);
        EXPECT_EQ(failure.function, "FailOnPurpose");
        EXPECT_TRUE(failure.file.ends_with("Tests/Core/System/Error/AssertionTest.cpp")) << failure.file;
    }
}

TEST(Assertion, SiteGoesOnAfterAHandlerThatReturnsIfAskedTo)
{
    const ReturningHandler handler;
    SetContinueAfterAssertion(true);
    FailOnPurpose();
    FailOnPurpose();
    EXPECT_EQ(s_calls, 2);
}

TEST(Assertion, SetHandlerReturnsTheOneBefore)
{
    const AssertionHandler first = SetAssertionHandler(&CountCall);
    EXPECT_EQ(SetAssertionHandler(first), &CountCall);
}

} // namespace
} // namespace Orvik::System::Error
