#include "Core/System/Multimedia/LargePages.h"

namespace Orvik::System::Multimedia
{

// On Windows large pages need a right that users don't have.
void PreferLargePages(void* /*memory*/, std::size_t /*bytes*/) noexcept
{
}

} // namespace Orvik::System::Multimedia
