#pragma once

#include <optional>
#include <string>

namespace Orvik::Desktops
{

/// Nothing where a call worked; else why it didn't: the system's message and its number, as `FormatLastError` puts
/// them.
using Failure = std::optional<std::string>;

} // namespace Orvik::Desktops
