#pragma once

#include "Core/System/Error/SourceLocation.h"

namespace Orvik::System::Error
{

/// What is known about a failed assertion. Valid during the handler's call.
struct AssertionInfo
{
    const char* condition; ///< as written
    const char* message;
    const SourceLocation* location;
};

/// Called for a failed assertion. The program's handler reports and ends the process; a test installs one that throws.
using AssertionHandler = void (*)(const AssertionInfo& info);

/// Replaces the handler and returns the previous one. Null restores the default, which writes the assertion to standard
/// error and ends the process by `std::abort`. From any thread.
AssertionHandler SetAssertionHandler(AssertionHandler handler) noexcept;

/// Whether the code after a failed assertion runs if the handler returns. By default it doesn't: the process ends like
/// after a failed assertion of the platform.
void SetContinueAfterAssertion(bool enabled) noexcept;

/// Called by a failed assertion. Calls the handler; then, unless the code is to go on, the platform's own assertion
/// failure, with the condition in parentheses, the full compiled-in path and the line.
void FailAssertion(const char* condition, const char* message, const char* path, const SourceLocation& location);

/// Ends the process like the platform's `assert`. `condition` is in parentheses.
[[noreturn]] void FailAssertionPlatform(const char* condition, const char* path, const SourceLocation& location);

} // namespace Orvik::System::Error

/// States what always holds unless the program has a bug. It stays in every build.
#define ORVIK_ASSERT(condition, message)                                                                               \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!(condition)) [[unlikely]]                                                                                 \
            ::Orvik::System::Error::FailAssertion(#condition, message, __FILE__, ORVIK_HERE);                          \
    } while (false)
