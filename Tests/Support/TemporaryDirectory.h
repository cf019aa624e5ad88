#pragma once

#include <filesystem>

namespace Orvik::Tests
{

/// A new, empty directory that is removed with the object, contents included.
class TemporaryDirectory
{
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    [[nodiscard]] const std::filesystem::path& GetPath() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace Orvik::Tests
