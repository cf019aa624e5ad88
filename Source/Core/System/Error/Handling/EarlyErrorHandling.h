#pragma once

#include "Core/System/Error/Handling/ErrorHandling.h"

namespace Orvik::System::Error
{

/// Makes the `ErrorHandling` by being constructed. A program has one as a static object with the first priority that
/// isn't the system's own, 101: it is there ahead of all other static objects then, whatever order their units are
/// linked in, and what goes wrong in their construction is reported.
struct EarlyErrorHandling
{
    EarlyErrorHandling() { (void)ErrorHandling::GetInstance(); }
};

} // namespace Orvik::System::Error
