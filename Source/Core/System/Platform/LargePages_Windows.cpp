#include "Core/System/Platform/LargePages.h"

namespace Orvik::System::Platform
{

// There large pages take a right that users don't have.
void PreferLargePages(void* /*memory*/, std::size_t /*bytes*/) noexcept
{
}

} // namespace Orvik::System::Platform
