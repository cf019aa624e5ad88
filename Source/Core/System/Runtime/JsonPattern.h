#pragma once

#include <string_view>

namespace Orvik::System::Runtime
{

/// Whether the JSON library's engine can be trusted with a pattern of a schema. It reads below its stack where a group
/// is empty, recurses without end where something that may be empty is repeated, takes twice as long with each choice
/// that may be empty, and as much memory as a count in braces says. So these are refused: counts, repeated groups,
/// empty groups and alternatives, choices of what may be empty, and what isn't ASCII or is longer than 1,000
/// characters.
[[nodiscard]] bool IsPatternSound(std::string_view pattern);

} // namespace Orvik::System::Runtime
