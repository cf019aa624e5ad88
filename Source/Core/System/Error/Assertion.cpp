#include "Core/System/Error/Assertion.h"

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <string>

namespace Orvik::System::Error
{
namespace
{

void ReportToStandardError(const AssertionInfo& info)
{
    static const std::ios_base::Init s_streams; // a static constructor may fail before the streams are made
    std::cerr << "Assertion: " << info.condition << "\n\tMessage: " << info.message
              << "\n\nCallstack:\n\t[0]: " << info.location->file << " at " << info.location->line << ": "
              << info.location->function << std::endl;
    std::abort();
}

// Atomic, because any thread may fail or replace them. Constant from the start, because static constructors may fail.
constinit std::atomic<AssertionHandler> s_handler = &ReportToStandardError;
constinit std::atomic<bool> s_continueAfterAssertion = false;

} // namespace

AssertionHandler SetAssertionHandler(AssertionHandler handler) noexcept
{
    return s_handler.exchange(handler != nullptr ? handler : &ReportToStandardError);
}

void SetContinueAfterAssertion(bool enabled) noexcept
{
    s_continueAfterAssertion = enabled;
}

void FailAssertion(const char* condition, const char* message, const char* path, const SourceLocation& location)
{
    s_handler.load()(AssertionInfo{condition, message, &location});
    if (!s_continueAfterAssertion)
        FailAssertionPlatform(("(" + std::string(condition) + ")").c_str(), path, location);
}

} // namespace Orvik::System::Error
