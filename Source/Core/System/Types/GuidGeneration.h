#pragma once

#include "Core/System/Text/Guid.h"

namespace Orvik::System
{

/// Makes a new identifier with the version and variant bits of a random UUID (RFC 4122, version 4). It is made of the
/// monotonic clock and the C library's generator, and sleeps 0 to 4 milliseconds on the way, so that two of one
/// instant differ. It reseeds that generator.
[[nodiscard]] GUID GenerateGuid();

} // namespace Orvik::System
