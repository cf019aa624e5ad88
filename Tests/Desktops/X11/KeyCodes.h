#pragma once

namespace Orvik::Tests
{

// Key codes of a PC keyboard as X servers number them.
inline constexpr unsigned int s_escapeKey = 9;
inline constexpr unsigned int s_spaceKey = 65;

} // namespace Orvik::Tests
