#pragma once

#include "Core/System/Log/Site/StreamID.h"

#include <cstdint>
#include <string_view>

namespace Orvik::System::Log
{

/// The name of one stream bit, as configuration keys and log lines have it. Any other value is an assertion failure,
/// and empty where the handler returns.
[[nodiscard]] std::string_view GetStreamName(std::uint32_t stream);

} // namespace Orvik::System::Log
