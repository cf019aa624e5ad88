#include "Core/System/Log/FileLogSink.h"

#include "Core/System/Error/Assertion.h"
#include "Core/System/Error/Exception.h"
#include "Core/System/Text/Files.h"
#include "Core/System/Text/Paths.h"
#include "Core/System/Time/Timestamp.h"

#include <limits>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace Orvik::System::Log
{
namespace
{

constexpr std::int64_t s_ticksPerDay = 864'000'000'000;
constexpr std::int64_t s_ticksPerSecond = 10'000'000;

[[noreturn]] void ThrowFileError(const char* operation, const std::filesystem::path& path, const std::error_code& error)
{
    throw std::filesystem::filesystem_error(operation, path, error);
}

std::uint64_t GetFileSize(const std::filesystem::path& path)
{
    std::error_code error;
    const std::uint64_t size = std::filesystem::file_size(path, error);
    if (error)
        ThrowFileError("file_size", path, error);
    return size;
}

/// True if another run that starts at the same moment has removed the same file.
bool IsGone(const std::filesystem::path& path)
{
    std::error_code error;
    return !std::filesystem::exists(path, error) && !error;
}

/// Ticks since 1970, or nothing if the file is gone.
std::optional<std::int64_t> GetWriteTime(const std::filesystem::path& path)
{
    std::error_code error;
    const std::int64_t time = Text::GetWriteTime(path, error);
    if (!error)
        return time;
    if (!IsGone(path))
        ThrowFileError("last_write_time", path, error);
    return std::nullopt;
}

void RemoveExpired(const std::filesystem::path& path)
{
    std::error_code error;
    const bool wasSuccessful = std::filesystem::remove(path, error) || IsGone(path);
    if (error && !wasSuccessful)
        ThrowFileError("remove", path, error);
    ORVIK_ASSERT(wasSuccessful, "Failed to delete log file.");
}

/// A file system that doesn't keep the time returns the beginning of its clock: 1970 or 1601.
bool IsUnset(std::int64_t writeTime)
{
    return writeTime == 0 || writeTime == Text::WindowsFileTimeBegin;
}

/// The write time, in ticks since 1970, before which a file has expired. Nothing expires if the age goes back further
/// than any clock.
std::int64_t GetExpiryLimit(std::uint32_t days)
{
    if (days > std::numeric_limits<std::int64_t>::max() / s_ticksPerDay)
        return std::numeric_limits<std::int64_t>::min();
    return Time::GetSystemTicks() - std::int64_t{days} * s_ticksPerDay;
}

} // namespace

FileLogSink::FileLogSink(std::filesystem::path directory, std::string fileName, std::uint64_t maxFileSize,
                         std::uint32_t maxFileAge)
    : m_fileName(std::move(fileName)),
      m_directory(std::move(directory)),
      m_maxFileSize(maxFileSize),
      m_maxFileAge(maxFileAge)
{
}

void FileLogSink::ExpectClosed(const Error::SourceLocation& location) const
{
    using namespace Error;
    if (m_stream.is_open())
        throw ExceptionWithDetails(location, ErrorDetails(LogFileStatusError, "Log file is expected to be closed."));
    if (m_isOpen)
        throw ExceptionWithDetails(location, ErrorDetails(LogFileStateError));
}

bool FileLogSink::Open()
{
    using namespace Error;
    ExpectClosed(ORVIK_HERE);

    if (!Text::Exists(m_directory) && !Text::CreatePrivateDirectory(m_directory))
    {
        throw ExceptionWithDetails(
            ORVIK_HERE, ErrorDetails(LogNotInitializedError, "Failed to create directory for the log file."));
    }
    std::filesystem::path latest;
    DeleteExpiredLogFiles(&latest);
    if (latest.empty() || GetFileSize(latest) >= m_maxFileSize)
        return OpenNewLogFile();

    OpenForAppend(latest);
    return m_isOpen;
}

bool FileLogSink::OpenNewLogFile()
{
    ExpectClosed(ORVIK_HERE);

    const std::int64_t now = Time::GetSystemTicks() / s_ticksPerSecond;
    const std::string name = m_fileName + "_" + Time::FormatLocalFileTime(now) + ".log";
    const std::filesystem::path path = Text::Join(m_directory, Text::PathFromUtf8(name));

    if (!ReserveFile(path))
        return false;
    // Written at its end: another sink may continue the same file, and neither may overwrite the other's lines.
    OpenForAppend(m_reservedPath);
    return m_isOpen;
}

bool FileLogSink::ReserveFile(const std::filesystem::path& path)
{
    // A second split in the same second begins a new file again.
    if (path == m_wantedPath)
        return std::ofstream(m_reservedPath, std::ios::out | std::ios::trunc).is_open();
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        return false;
    // A file that already exists is the log of another program of this name, begun in the same second.
    Text::NewFile file = Text::OpenNewFile(path);
    if (file.file == nullptr)
        return false;
    m_wantedPath = path;
    m_reservedPath = std::move(file.path);
    return true;
}

void FileLogSink::OpenForAppend(const std::filesystem::path& path)
{
    m_stream.open(path, std::ios::out | std::ios::app);
    if (!m_stream.is_open())
        return;
    m_currentPath = path;
    m_isOpen = true;
}

void FileLogSink::DeleteExpiredLogFiles(std::filesystem::path* latest)
{
    std::int64_t newest = std::numeric_limits<std::int64_t>::min();
    for (const std::filesystem::path& path : FindLogFiles())
    {
        const std::optional<std::int64_t> writeTime = GetWriteTime(path);
        if (!writeTime)
            continue;
        if (GetExpiryLimit(m_maxFileAge) > *writeTime)
            RemoveExpired(path);
        else if (latest != nullptr && !IsUnset(*writeTime) && *writeTime > newest)
        {
            newest = *writeTime;
            *latest = path;
        }
    }
}

std::vector<std::filesystem::path> FileLogSink::FindLogFiles() const
{
    std::error_code error;
    std::filesystem::directory_iterator iterator(m_directory, error);
    if (error)
        ThrowFileError("directory_iterator::directory_iterator", m_directory, error);

    std::vector<std::filesystem::path> files;
    while (iterator != std::filesystem::directory_iterator())
    {
        if (IsLogFile(*iterator))
            files.push_back(iterator->path());
        iterator.increment(error);
        if (error)
            ThrowFileError("directory_iterator::operator++", m_directory, error);
    }
    return files;
}

bool FileLogSink::IsLogFile(const std::filesystem::directory_entry& entry) const
{
    std::error_code error;
    const std::filesystem::file_status status = entry.status(error);
    if (status.type() == std::filesystem::file_type::none)
        ThrowFileError("directory_entry::status", entry.path(), error);
    if (!std::filesystem::is_regular_file(status) || entry.path().extension() != ".log")
        return false;

    // The century is enough to recognise the time. Report files, whose names go on with "_ERROR_", don't match, so they
    // are neither continued nor deleted.
    return Text::PathToUtf8(entry.path().filename()).starts_with(m_fileName + "_2");
}

void FileLogSink::Write(const std::string& line)
{
    using namespace Error;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_stream.is_open())
        {
            if (!m_isOpen)
                return;
            throw ExceptionWithDetails(ORVIK_HERE, ErrorDetails(LogFileStateError));
        }
        m_stream << line << std::flush;
    }
    SplitLogFileIfNeeded();
}

bool FileLogSink::HasReachedMaxSize()
{
    std::filesystem::path path;
    {
        const std::lock_guard lock(m_mutex);
        path = m_currentPath;
    }
    // The file system knows the size even if other processes write to the file as well.
    return GetFileSize(path) >= m_maxFileSize;
}

void FileLogSink::SplitLogFileIfNeeded()
{
    using namespace Error;
    if (!HasReachedMaxSize())
        return;

    const std::uint64_t splitCount = m_splitCount;
    std::unique_lock lock(m_mutex, std::try_to_lock);
    while (!lock.owns_lock())
    {
        if (m_splitCount != splitCount)
            return; // another thread has split the file meanwhile
        std::this_thread::yield();
        (void)lock.try_lock();
    }
    ++m_splitCount;
    m_stream.close();
    m_isOpen = false;
    if (!OpenNewLogFile())
        throw ExceptionWithDetails(ORVIK_HERE, ErrorDetails(LogFileStatusError, "Couldn't open new log file."));
    if (!m_stream.is_open())
        throw ExceptionWithDetails(ORVIK_HERE, ErrorDetails(LogFileStateError));
}

} // namespace Orvik::System::Log
