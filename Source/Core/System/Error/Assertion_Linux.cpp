#include "Core/System/Error/Assertion.h"

#include <cassert>

namespace Orvik::System::Error
{

void FailAssertionPlatform(const char* condition, const char* path, const SourceLocation& location)
{
    __assert_fail(condition, path, static_cast<unsigned>(location.line), location.function);
}

} // namespace Orvik::System::Error
