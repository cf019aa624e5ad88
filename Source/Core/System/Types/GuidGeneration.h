#pragma once

#include "Core/System/Text/Guid.h"

namespace Orvik::System
{

/// Makes a new identifier with the version and variant bits of a random UUID (RFC 4122, version 4). It uses the
/// monotonic clock and the C library's generator, which it seeds, and sleeps 0 to 4 milliseconds, so that two
/// identifiers of the same moment differ.
[[nodiscard]] GUID GenerateGuid();

} // namespace Orvik::System
