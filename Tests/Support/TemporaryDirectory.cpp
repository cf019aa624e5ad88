#include "Tests/Support/TemporaryDirectory.h"

#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

namespace Orvik::Tests
{

TemporaryDirectory::TemporaryDirectory()
{
    const std::filesystem::path parent = std::filesystem::temp_directory_path();
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt)
    {
        m_path = parent / ("snipbench-test-" + std::to_string(random()));
        if (std::filesystem::create_directory(m_path)) // not if it is there already
            return;
    }
    throw std::runtime_error("No temporary directory can be made.");
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace Orvik::Tests
