#pragma once

#include "Core/System/Error/ErrorHandling.h"

namespace Orvik::System::Error
{

/// Makes the `ErrorHandling` by being constructed. A program has one as a static object with priority 101, the first
/// that isn't reserved for the system. So it exists before all other static objects, in whatever order the units are
/// linked, and failures in their construction are reported.
struct EarlyErrorHandling
{
    EarlyErrorHandling() { (void)ErrorHandling::GetInstance(); }
};

} // namespace Orvik::System::Error
