#pragma once

#include "Core/System/Log/StreamID.h"

namespace Orvik::System::Log
{

/// What the messages of a source file have in common: their stream, and the least severity that passes.
struct Context
{
    std::uint32_t stream = Default;
    std::uint32_t severity = static_cast<std::uint32_t>(MessageTypeID::Info);
};

// For the program's own messages: from `Info` on they pass, whatever the configuration says.
inline constexpr Context s_system{StreamID::System};
inline constexpr Context s_graphics{StreamID::Graphics};
inline constexpr Context s_snipBench{StreamID::SnipBench};

/// The severity gate: `Always` passes, and everything else that isn't below the context's threshold.
[[nodiscard]] constexpr bool IsEnabled(const Context& context, MessageTypeID severity) noexcept
{
    return severity == MessageTypeID::Always || (context.severity & 0xFFU) <= static_cast<std::uint32_t>(severity);
}

} // namespace Orvik::System::Log
