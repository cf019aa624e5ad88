#pragma once

#include "Core/System/Error/SourceLocation.h"
#include "Core/System/Log/Sink.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <vector>

namespace Orvik::System::Log
{

/// Writes to a file in the log directory and flushes every line, so that the file is complete whenever the program
/// ends. The file of an earlier run is continued while there is room in it; a full one is followed by a new one; old
/// ones are deleted. A file is named after the base name and the local time of its beginning:
/// "Name_2026-11-12T06-46-34.log", with "_1" and so on if another program has begun one of that name.
class FileLogSink final : public Sink
{
public:
    /// Doesn't touch the file system. `fileName` is the base name, UTF-8. A file of `maxFileSize` bytes or more gets no
    /// more lines; `Open` deletes a file that was last written more than `maxFileAge` days ago.
    FileLogSink(std::filesystem::path directory, std::string fileName, std::uint64_t maxFileSize,
                std::uint32_t maxFileAge);

    /// Creates the directory if it doesn't exist, deletes expired files and opens the newest of the rest, or a new one.
    /// Called once. False if the file can't be opened. Throws the file system's errors, and an `Exception` if the sink
    /// is already open or the directory can't be created.
    [[nodiscard]] bool Open();

    /// Drops the line while the sink isn't open. Throws if the file is gone or a new one can't be opened.
    void Write(const std::string& line) override;

    /// The file in use; empty before `Open`.
    [[nodiscard]] const std::filesystem::path& GetCurrentPath() const { return m_currentPath; }

private:
    /// Throws if a file is open. The exception has the caller's location.
    void ExpectClosed(const Error::SourceLocation& location) const;
    [[nodiscard]] bool OpenNewLogFile();
    /// Makes an empty file of that name, or of the next name that no other program has taken.
    [[nodiscard]] bool ReserveFile(const std::filesystem::path& path);
    void OpenForAppend(const std::filesystem::path& path);
    void SplitLogFileIfNeeded();
    [[nodiscard]] bool HasReachedMaxSize();
    void DeleteExpiredLogFiles(std::filesystem::path* latest);
    [[nodiscard]] std::vector<std::filesystem::path> FindLogFiles() const;
    [[nodiscard]] bool IsLogFile(const std::filesystem::directory_entry& entry) const;

    std::mutex m_mutex;                         ///< guards the stream, its path and `m_isOpen` once the sink is open
    std::atomic<std::uint64_t> m_splitCount{0}; ///< splits done so far
    std::string m_fileName;
    std::filesystem::path m_directory;
    std::filesystem::path m_currentPath;
    std::filesystem::path m_wantedPath;   ///< the name with only the time, of the last file that this sink made
    std::filesystem::path m_reservedPath; ///< the name that the file got
    std::ofstream m_stream;
    bool m_isOpen = false;       ///< whether `m_stream` should be open
    std::uint64_t m_maxFileSize; ///< bytes
    std::uint32_t m_maxFileAge;  ///< days
};

} // namespace Orvik::System::Log
