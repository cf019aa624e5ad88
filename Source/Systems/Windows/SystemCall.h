#pragma once

#include "Systems/Windows/WindowsHeaders.h"

namespace Orvik::Systems
{

/// A system function that tests have to see fail, as the units call it: `SystemCall<&::BitBlt>(...)`. A test puts a
/// function of its own in its place, and so refuses calls, counts them, or imitates other machines.
template <auto Function>
inline constinit decltype(Function) SystemCall = Function;

} // namespace Orvik::Systems
