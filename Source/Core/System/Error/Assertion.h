#pragma once

#include "Core/System/Error/SourceLocation.h"

namespace Orvik::System::Error
{

/// What is known of a failed assertion. Valid for the length of the handler's call.
struct AssertionInfo
{
    const char* condition; ///< as written
    const char* message;
    const SourceLocation* location;
};

/// What a failed assertion runs. The program's handler reports and ends the process; a test installs one that throws.
using AssertionHandler = void (*)(const AssertionInfo& info);

/// Replaces the handler and returns the one before. Null brings back the default, which writes the assertion to
/// standard error and ends the process by `std::abort`. May be called from any thread.
AssertionHandler SetAssertionHandler(AssertionHandler handler) noexcept;

/// Whether a site goes on after a handler that returned. It is not by default: the site then ends the process as the
/// platform's own assertion does.
void SetContinueAfterAssertion(bool enabled) noexcept;

/// What a failed site calls: the handler, then, unless sites go on, the platform's own assertion failure with
/// the condition in parentheses, the full compiled-in path and the line.
void FailAssertion(const char* condition, const char* message, const char* path, const SourceLocation& location);

/// Ends the process in the way of the platform's `assert`. `condition` comes in parentheses.
[[noreturn]] void FailAssertionPlatform(const char* condition, const char* path, const SourceLocation& location);

} // namespace Orvik::System::Error

/// States what has to hold unless the program itself is at fault. It stays in every build.
#define ORVIK_ASSERT(condition, message)                                                                               \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!(condition)) [[unlikely]]                                                                                 \
            ::Orvik::System::Error::FailAssertion(#condition, message, __FILE__, ORVIK_HERE);                          \
    } while (false)
