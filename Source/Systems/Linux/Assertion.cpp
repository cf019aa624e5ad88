#include "Core/System/Error/Assertion.h"

// The failure function is declared in debug builds only; here assertions stay in every build.
#undef NDEBUG
#include <cassert>

namespace Orvik::System::Error
{

void FailAssertionPlatform(const char* condition, const char* path, const SourceLocation& location)
{
    __assert_fail(condition, path, static_cast<unsigned>(location.line), location.function);
}

} // namespace Orvik::System::Error
