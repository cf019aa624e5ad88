#pragma once

#include "Core/System/Error/Assertion.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// What a failed assertion throws while an `AssertionTrap` lives.
struct AssertionFailure
{
    std::string condition;
    std::string message;
    std::string file;
    std::uint64_t line;
    std::string function;
};

/// Makes failed assertions throw an `AssertionFailure` while it lives.
class AssertionTrap
{
public:
    AssertionTrap();
    ~AssertionTrap();
    AssertionTrap(const AssertionTrap&) = delete;
    AssertionTrap& operator=(const AssertionTrap&) = delete;

private:
    System::Error::AssertionHandler m_previous;
};

/// Records failed assertions while it lives, and lets the code after them run.
class AssertionList
{
public:
    AssertionList();
    ~AssertionList();
    AssertionList(const AssertionList&) = delete;
    AssertionList& operator=(const AssertionList&) = delete;

    /// The messages since the last call, in order.
    [[nodiscard]] static std::vector<std::string> Take();

private:
    System::Error::AssertionHandler m_previous;
};

} // namespace Orvik::Tests

/// The statement must fail an assertion with exactly these two texts.
#define EXPECT_ASSERTION(statement, expectedCondition, expectedMessage)                                                \
    do                                                                                                                 \
    {                                                                                                                  \
        const ::Orvik::Tests::AssertionTrap orvikTrap;                                                                 \
        try                                                                                                            \
        {                                                                                                              \
            statement;                                                                                                 \
            ADD_FAILURE() << "No assertion failed in: " #statement;                                                    \
        }                                                                                                              \
        catch (const ::Orvik::Tests::AssertionFailure& orvikFailure)                                                   \
        {                                                                                                              \
            EXPECT_EQ(orvikFailure.condition, expectedCondition);                                                      \
            EXPECT_EQ(orvikFailure.message, expectedMessage);                                                          \
        }                                                                                                              \
    } while (false)
