#pragma once

#include "Core/System/Log/Site/StreamID.h"

namespace Orvik::System::Log
{

/// What a source file's messages have in common: their stream, and the least severity that passes.
/// A file that logs keeps one as a constant.
struct Context
{
    std::uint32_t stream = Default;
    std::uint32_t severity = static_cast<std::uint32_t>(MessageTypeID::Info);
};

/// The severity gate: `Always` passes, anything else if it isn't below the context's threshold.
[[nodiscard]] constexpr bool IsEnabled(const Context& context, MessageTypeID severity) noexcept
{
    return severity == MessageTypeID::Always || (context.severity & 0xFFU) <= static_cast<std::uint32_t>(severity);
}

} // namespace Orvik::System::Log
