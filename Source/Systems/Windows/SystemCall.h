#pragma once

#include "Systems/Windows/WindowsHeaders.h"

namespace Orvik::Systems
{

/// A function of the system as the units call it that have to see it fail in a test: `SystemCall<&::BitBlt>(...)`. A
/// test puts a function of its own in its place, and so refuses calls, counts them, and stands for other machines.
template <auto Function>
inline constinit decltype(Function) SystemCall = Function;

} // namespace Orvik::Systems
