#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace Orvik::System::Text
{

/// A path from UTF-8, with the preferred separator everywhere. Where paths are bytes (Linux) the text is used
/// unchanged, valid UTF-8 or not; where they are UTF-16 (Windows) invalid bytes become U+FFFD.
[[nodiscard]] std::filesystem::path PathFromUtf8(std::string_view text);

/// The bare path as UTF-8, without quotes.
[[nodiscard]] std::string PathToUtf8(const std::filesystem::path& path);

/// `directory` joined with `name`; each "/" of the result becomes the preferred separator.
[[nodiscard]] std::filesystem::path Join(const std::filesystem::path& directory, const std::filesystem::path& name);

/// Makes `path` absolute. Throws `std::filesystem::filesystem_error` with the operation "absolute" and the path.
[[nodiscard]] std::filesystem::path MakeAbsolute(const std::filesystem::path& path);

/// Whether anything of that name exists. Throws `std::filesystem::filesystem_error` with the operation "exists" and the
/// path if that can't be found out.
[[nodiscard]] bool Exists(const std::filesystem::path& path);

/// Creates a directory with all its parents; one that exists is no error. Returns whether anything was created. Throws
/// `std::filesystem::filesystem_error` with the operation "create_directories" and the path.
bool CreateDirectories(const std::filesystem::path& path);

/// The same, but no other user may enter the directory or see what is in it. Its parents, and one that exists, keep or
/// get the usual rights.
bool CreatePrivateDirectory(const std::filesystem::path& path);

/// Creates one directory, whose parent exists, for the user alone. False if it exists already, or with `error` set.
[[nodiscard]] bool CreatePrivateDirectoryPlatform(const std::filesystem::path& path, std::error_code& error);

} // namespace Orvik::System::Text
