#include "Tests/Support/OwnProgram.h"

namespace Orvik::Tests
{

std::filesystem::path GetOwnProgram()
{
    return std::filesystem::read_symlink("/proc/self/exe");
}

} // namespace Orvik::Tests
