#include "Core/System/Multimedia/LargePages.h"

#include <memory>
#include <sys/mman.h>
#include <unistd.h>

namespace Orvik::System::Multimedia
{

void PreferLargePages(void* memory, std::size_t bytes) noexcept
{
    // Smaller memory gains little, and the rest of a large page would be lost.
    constexpr std::size_t leastBytes = std::size_t{4} << 20;
    const long page = sysconf(_SC_PAGESIZE);
    if (bytes < leastBytes || page <= 0)
        return;
    void* first = memory;
    std::size_t space = bytes;
    const auto pageBytes = static_cast<std::size_t>(page);
    if (std::align(pageBytes, pageBytes, first, space) != nullptr)
        madvise(first, space / pageBytes * pageBytes, MADV_HUGEPAGE);
}

} // namespace Orvik::System::Multimedia
