#pragma once

#include <optional>
#include <string>

namespace Orvik::Desktops
{

/// Empty if a call worked; else the reason: the system's message and its number, in the form of `FormatLastError`.
using Failure = std::optional<std::string>;

} // namespace Orvik::Desktops
