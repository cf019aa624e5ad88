#pragma once

#include <cstddef>

namespace Orvik::System::Multimedia
{

/// Asks the system to back memory by large pages when it is first touched, which takes a fraction of the time: for
/// memory of a picture's size that is about to be filled. A wish only; nothing depends on it.
void PreferLargePages(void* memory, std::size_t bytes) noexcept;

} // namespace Orvik::System::Multimedia
