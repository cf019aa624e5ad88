#include "Tests/Support/TemporaryDirectory.h"

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

namespace Orvik::Tests
{

TemporaryDirectory::TemporaryDirectory()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "snipbench-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("No temporary directory can be made.");
    m_path = pattern;
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace Orvik::Tests
