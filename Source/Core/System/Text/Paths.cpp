#include "Core/System/Text/Paths.h"

#include "Core/System/Text/Unicode.h"

#include <string>
#include <system_error>
#include <type_traits>

namespace Orvik::System::Text
{
namespace
{

// Templates, so that only the platform's own kind of path is compiled. The conversions are written here because the
// library's throw for invalid text.

template <typename Path_Type>
Path_Type MakePath(std::string_view text)
{
    if constexpr (std::is_same_v<typename Path_Type::value_type, wchar_t>)
        return ToWide(text);
    else
        return text;
}

template <typename Path_Type>
std::string MakeText(const Path_Type& path)
{
    if constexpr (std::is_same_v<typename Path_Type::value_type, wchar_t>)
        return ToUtf8(path.native());
    else
        return path.native();
}

} // namespace

std::filesystem::path PathFromUtf8(std::string_view text)
{
    return MakePath<std::filesystem::path>(text).make_preferred();
}

std::string PathToUtf8(const std::filesystem::path& path)
{
    return MakeText(path);
}

std::filesystem::path Join(const std::filesystem::path& directory, const std::filesystem::path& name)
{
    return (directory / name).make_preferred();
}

// The standard library's own error texts differ from platform to platform. Users read these texts, so they are made
// here.

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

bool CreatePrivateDirectory(const std::filesystem::path& path)
{
    // "Logs/" names the directory "Logs", too.
    const std::filesystem::path directory = path.has_filename() ? path : path.parent_path();
    std::error_code error;
    if (directory.has_parent_path())
        std::filesystem::create_directories(directory.parent_path(), error);
    const bool isCreated = !error && CreatePrivateDirectoryPlatform(directory, error);
    if (error)
        throw std::filesystem::filesystem_error("create_directories", path, error);
    return isCreated;
}

} // namespace Orvik::System::Text
