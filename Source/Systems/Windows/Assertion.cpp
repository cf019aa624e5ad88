#include "Core/System/Error/Assertion.h"
#include "Core/System/Text/Unicode.h"

#include <cstdlib>

// The failure function is declared in debug builds only; here assertions stay in every build.
#undef NDEBUG
#include <cassert>

namespace Orvik::System::Error
{

void FailAssertionPlatform(const char* condition, const char* path, const SourceLocation& location)
{
    _wassert(Text::ToWide(condition).c_str(), Text::ToWide(path).c_str(), static_cast<unsigned>(location.line));
    std::abort(); // reached if the user chose to ignore the assertion
}

} // namespace Orvik::System::Error
