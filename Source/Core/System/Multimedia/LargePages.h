#pragma once

#include <cstddef>

namespace Orvik::System::Multimedia
{

/// Asks the system to use large pages for this memory, before it is first touched. That is much faster for memory of a
/// picture's size that is about to be filled. The system may ignore it; nothing depends on it.
void PreferLargePages(void* memory, std::size_t bytes) noexcept;

} // namespace Orvik::System::Multimedia
