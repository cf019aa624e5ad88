#include "Core/System/Text/Paths.h"

#include <system_error>

namespace Orvik::System::Text
{

std::filesystem::path PathFromUtf8(std::string_view text)
{
    const std::u8string utf8(text.begin(), text.end());
    return std::filesystem::path(utf8).make_preferred();
}

std::string PathToUtf8(const std::filesystem::path& path)
{
    const std::u8string utf8 = path.u8string();
    return {utf8.begin(), utf8.end()};
}

std::filesystem::path Join(const std::filesystem::path& directory, const std::filesystem::path& name)
{
    return (directory / name).make_preferred();
}

// The standard library words its own errors differently from platform to platform. These texts reach users, so they
// are made here.

std::filesystem::path MakeAbsolute(const std::filesystem::path& path)
{
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(path, error);
    if (error)
        throw std::filesystem::filesystem_error("absolute", path, error);
    return absolute;
}

bool Exists(const std::filesystem::path& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::none)
        throw std::filesystem::filesystem_error("exists", path, error);
    return std::filesystem::exists(status);
}

bool CreateDirectories(const std::filesystem::path& path)
{
    std::error_code error;
    const bool isCreated = std::filesystem::create_directories(path, error);
    if (error)
        throw std::filesystem::filesystem_error("create_directories", path, error);
    return isCreated;
}

} // namespace Orvik::System::Text
