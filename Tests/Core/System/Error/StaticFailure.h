#pragma once

// For tests of what fails before `main`: a test program that is started with a role has static objects that fail.

#include "Core/System/Error/EarlyErrorHandling.h"

#include <cstdlib>
#include <string_view>

namespace Orvik::Tests
{

/// Names the role of a test program. Without one it tests.
inline constexpr const char* s_roleVariable = "ORVIK_TEST_ROLE";
inline constexpr const char* s_ordinaryRole = "fail in an ordinary static object";
inline constexpr const char* s_firstRole = "fail in the first static object";
inline constexpr const char* s_unhandledRole = "fail before there is an ErrorHandling";

[[nodiscard]] inline bool PlaysRole(std::string_view role)
{
    const char* const played = std::getenv(s_roleVariable);
    return played != nullptr && played == role;
}

inline void FailStatically()
{
    ORVIK_ASSERT(1 == 2, "One is two.");
}

/// One of a program's many.
struct OrdinaryObject
{
    OrdinaryObject()
    {
        if (PlaysRole(s_ordinaryRole))
            FailStatically();
    }
};

/// Makes the program's `ErrorHandling` where the role has one. In the other roles it fails, ahead of the object that
/// makes the standard streams.
struct FirstObject
{
    FirstObject()
    {
        if (PlaysRole(s_ordinaryRole) || PlaysRole(s_firstRole)) [[maybe_unused]]
            const System::Error::EarlyErrorHandling made;
        if (PlaysRole(s_firstRole) || PlaysRole(s_unhandledRole))
            FailStatically();
    }
};

} // namespace Orvik::Tests
