#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

namespace Orvik::System::Text
{

struct CloseOnDestruction
{
    void operator()(std::FILE* file) const noexcept;
};

/// An open file of the C library, closed with the object. After writing, call `Close` instead, which reports whether
/// all bytes were written.
using File = std::unique_ptr<std::FILE, CloseOnDestruction>;

/// Opens a file; `mode` is that of `fopen`. Null if it can't be opened; the last system error then says why. Programs
/// that this one starts don't inherit the file.
[[nodiscard]] File OpenFile(const std::filesystem::path& path, const char* mode);

/// A file that was just made.
struct NewFile
{
    File file;                  ///< open for writing, as text
    std::filesystem::path path; ///< the name that was free
};

/// Makes a new file that only the user can read, and opens it. An existing file or link of that name isn't touched or
/// followed: the next name is tried, with "_1", "_2" and so on before the extension. Nothing is open if the system
/// refuses.
[[nodiscard]] NewFile OpenNewFile(const std::filesystem::path& path);

/// The same with this name only, for the user alone on every system whose directories don't see to that. Null on
/// failure; `isTaken` is set if something of that name exists.
[[nodiscard]] File OpenNewFilePlatform(const std::filesystem::path& path, bool& isTaken);

/// Writes bytes to a file. False if not all of them were written, as on a full disk.
[[nodiscard]] bool Write(std::FILE& file, const void* data, std::size_t bytes);

/// How many parts of files `Write` has written in this process. If the number grows, writing goes on. From any thread.
[[nodiscard]] std::uint64_t GetWriteProgress();

enum class Replacement : std::uint8_t
{
    Done,
    NotOpened,  ///< the file can't be made, or not be replaced
    NotWritten, ///< the text couldn't be written completely, for example on a full disk
    Held,       ///< another program keeps the file from being replaced, for longer than a second
};

/// Replaces the file's content by this text, bytes as they are. A reader finds the whole old text or the whole new one;
/// after a failure the old one is still there. The text is first written beside the file, under its name with ".part"
/// added. Waits at most a second for a program that keeps the file from being replaced.
[[nodiscard]] Replacement ReplaceFile(const std::filesystem::path& path, const std::string& text);

/// Whether this error, from giving a file the name `path`, means that another program has it open, and so may pass.
[[nodiscard]] bool IsHeldPlatform(const std::filesystem::path& path, const std::error_code& error);

/// The beginning of 1601, where the file times of Windows begin, in ticks since 1970.
inline constexpr std::int64_t WindowsFileTimeBegin = -0x19DB1DED53E8000;

/// When a file was last written, in 100-nanosecond ticks since the beginning of 1970 in UTC, as exact as its file
/// system keeps it. 0 with `error` set if that can't be read.
[[nodiscard]] std::int64_t GetWriteTime(const std::filesystem::path& path, std::error_code& error);

/// Closes a file. False if not all that was written to it reached the system, as on a full disk.
[[nodiscard]] bool Close(File file);

} // namespace Orvik::System::Text
