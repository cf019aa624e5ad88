#pragma once

#include <cstdint>
#include <vector>

namespace Orvik::Fuzz
{

/// Adds what has come on a socket of the local kind, and closes the descriptors that came with it. `flags` are those of
/// recvmsg(2): without `MSG_DONTWAIT` it waits. False if the other end has gone, or if nothing has come.
[[nodiscard]] bool Receive(int socket, int flags, std::vector<std::uint8_t>& bytes);

} // namespace Orvik::Fuzz
