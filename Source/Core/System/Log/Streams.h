#pragma once

#include "Core/System/Log/StreamID.h"

#include <cstdint>
#include <string_view>

namespace Orvik::System::Log
{

/// The name of one stream bit, as in configuration keys and log lines. Any other value is an assertion failure, and
/// gives an empty name if the handler returns.
[[nodiscard]] std::string_view GetStreamName(std::uint32_t stream);

} // namespace Orvik::System::Log
