#include "Core/System/Processes/ProcessPlatform.h"

#include "Core/System/Time/MonotonicClock.h"
#include "Systems/Linux/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <sstream>
#include <string_view>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace Orvik::System::Processes
{
namespace
{

using Systems::FileDescriptor;

constexpr std::int64_t s_millisecond = 1'000'000; ///< in nanoseconds
/// How long a process may take to end after it was asked to: nothing that it saves takes longer.
constexpr std::int64_t s_endNanoseconds = 3'000 * s_millisecond;
/// How long the system may take to remove a process that was killed.
constexpr std::int64_t s_killNanoseconds = 1'000 * s_millisecond;
constexpr std::int64_t s_pollNanoseconds = 5 * s_millisecond;
/// How long a process may take to load. Only one of another program with our name doesn't hear requests after that.
constexpr std::int64_t s_loadNanoseconds = 2'000 * s_millisecond;
/// How long the user may have to wait when this run is asked to end while it waits for another.
constexpr std::int64_t s_interruptionNanoseconds = 20 * s_millisecond;

struct CloseDirectory
{
    void operator()(DIR* directory) const noexcept { closedir(directory); }
};

/// The number that the whole text spells, if it is the id of a process.
std::optional<pid_t> ParseProcessId(std::string_view text)
{
    pid_t id = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
    if (error != std::errc() || end != text.data() + text.size() || id <= 0)
        return std::nullopt;
    return id;
}

/// Opens /proc/<id>. The directory belongs to that one process: once the process is gone, nothing is found in it, even
/// if another process has got its number.
FileDescriptor OpenProcessDirectory(std::uint64_t id)
{
    // A number beyond the range would be cut, and then mean another process, or a group of processes.
    if (id == 0 || id > std::uint64_t{INT_MAX})
    {
        errno = ESRCH;
        return FileDescriptor();
    }
    return FileDescriptor(open(("/proc/" + std::to_string(id)).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

/// Reads the beginning of one of the process's files; it is longer than everything that is looked for.
std::optional<std::string> ReadProcessFile(const FileDescriptor& directory, const char* name)
{
    const FileDescriptor file(openat(directory.Get(), name, O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen())
        return std::nullopt;
    std::array<char, 4096> text = {};
    const ssize_t length = read(file.Get(), text.data(), text.size());
    if (length < 0)
        return std::nullopt;
    return std::string(text.data(), static_cast<std::size_t>(length));
}

/// The base name of the executable, or nothing for kernel threads and processes of other users.
std::optional<std::string> ReadExecutableName(const FileDescriptor& directory)
{
    std::array<char, PATH_MAX> target = {};
    const ssize_t length = readlinkat(directory.Get(), "exe", target.data(), target.size());
    if (length <= 0)
        return std::nullopt;
    std::string_view name(target.data(), static_cast<std::size_t>(length));
    name.remove_prefix(name.rfind('/') + 1);
    // An executable that was replaced while it ran is still the program of that name.
    constexpr std::string_view deleted = " (deleted)";
    if (name.ends_with(deleted))
        name.remove_suffix(deleted.size());
    return std::string(name);
}

/// The name that the kernel keeps, which every user may read; cut to 15 bytes.
std::optional<std::string> ReadCommandName(const FileDescriptor& directory)
{
    std::optional<std::string> name = ReadProcessFile(directory, "comm");
    if (name && name->ends_with('\n'))
        name->pop_back();
    return name;
}

/// The rest of the line that begins with `key`, without leading blanks; empty if there is no such line.
std::string_view FindStatusValue(std::string_view status, std::string_view key)
{
    std::size_t begin = 0;
    while (begin < status.size())
    {
        const std::size_t end = std::min(status.find('\n', begin), status.size());
        std::string_view line = status.substr(begin, end - begin);
        if (line.starts_with(key))
        {
            line.remove_prefix(key.size());
            line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
            return line;
        }
        begin = end + 1;
    }
    return {};
}

/// Whether SIGTERM is a request to the process, which it then awaits or passes over. Until a run's first lines it
/// isn't.
bool HearsRequests(const FileDescriptor& directory)
{
    const std::optional<std::string> status = ReadProcessFile(directory, "status");
    if (!status)
        return true;
    std::uint64_t heard = 0;
    for (const std::string_view key : {"SigBlk:", "SigCgt:", "SigIgn:"})
    {
        const std::string_view text = FindStatusValue(*status, key);
        std::uint64_t signals = 0;
        (void)std::from_chars(text.data(), text.data() + text.size(), signals, 16);
        heard |= signals;
    }
    return (heard >> (SIGTERM - 1) & 1U) != 0;
}

/// Whether the process runs as our own user; if not, the last system error says why. The directory's owner isn't the
/// answer: it is root for a process that may not be dumped.
bool IsOfSameUser(const FileDescriptor& directory)
{
    const std::optional<std::string> status = ReadProcessFile(directory, "status");
    if (!status)
        return false;
    const std::string_view owner = FindStatusValue(*status, "Uid:");
    uid_t user = 0;
    const auto [end, error] = std::from_chars(owner.data(), owner.data() + owner.size(), user);
    errno = EPERM;
    return error == std::errc() && user == geteuid();
}

/// State and start time of a process, from its status line. False if the line can't be read.
bool ReadLife(const FileDescriptor& directory, ProcessRecord& record)
{
    const std::optional<std::string> line = ReadProcessFile(directory, "stat");
    if (!line)
        return false;
    // The name before it may contain anything, even blanks and brackets.
    const std::size_t nameEnd = line->rfind(')');
    if (nameEnd == std::string::npos)
        return false;
    std::string_view rest = std::string_view(*line).substr(nameEnd + 1);
    const auto takeItem = [&rest]
    {
        rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
        const std::string_view item = rest.substr(0, rest.find(' '));
        rest.remove_prefix(item.size());
        return item;
    };
    const std::string_view state = takeItem();
    constexpr int itemsBetween = 18;
    for (int index = 0; index < itemsBetween; ++index)
        (void)takeItem();
    const std::string_view start = takeItem();
    const auto [end, error] = std::from_chars(start.data(), start.data() + start.size(), record.startTime);
    record.hasEnded = state == "Z" || state == "X";
    return error == std::errc() && end == start.data() + start.size();
}

/// The path of the file that contains the address, as the list of the process's mappings writes it; empty if none.
std::string FindMappedFile(const FileDescriptor& directory, std::uintptr_t address)
{
    const FileDescriptor file(openat(directory.Get(), "maps", O_RDONLY | O_CLOEXEC));
    std::string text;
    std::array<char, 4096> block = {};
    ssize_t length = 0;
    while (file.IsOpen() && (length = read(file.Get(), block.data(), block.size())) > 0)
        text.append(block.data(), static_cast<std::size_t>(length));
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
    {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        const char* const last = line.data() + line.size();
        const auto [dash, error] = std::from_chars(line.data(), last, begin, 16);
        if (error != std::errc() || dash == last || std::from_chars(dash + 1, last, end, 16).ec != std::errc())
            continue;
        if (address < begin || address >= end)
            continue;
        const std::size_t path = line.find('/');
        return path != std::string::npos ? line.substr(path) : std::string();
    }
    return {};
}

/// One process to end. If the kernel has process descriptors, one of them holds the process, so that another process
/// that gets its number meanwhile isn't hit.
class EndingProcess
{
public:
    EndingProcess(std::uint64_t id, const FileDescriptor& directory)
        : m_id(static_cast<pid_t>(id)),
          m_directory(directory),
          m_descriptor(static_cast<int>(syscall(SYS_pidfd_open, m_id, 0))),
          m_hasNoDescriptors(!m_descriptor.IsOpen() && errno != ESRCH)
    {
    }

    /// False if the process isn't there.
    [[nodiscard]] bool IsOpen() const { return m_descriptor.IsOpen() || m_hasNoDescriptors; }

    [[nodiscard]] bool Send(int signal) const
    {
        if (m_hasNoDescriptors)
            return kill(m_id, signal) == 0;
        return syscall(SYS_pidfd_send_signal, m_descriptor.Get(), signal, nullptr, 0) == 0;
    }

    /// Waits until the process hears requests, or is gone: a request that comes before ends it without an answer.
    /// False if the wait was interrupted.
    [[nodiscard]] bool WaitForLoading(const std::function<bool()>& isInterrupted) const
    {
        const std::int64_t deadline = Time::GetMonotonicNanoseconds() + s_loadNanoseconds;
        while (!HearsRequests(m_directory) && !HasEnded() && Time::GetMonotonicNanoseconds() < deadline)
        {
            if (isInterrupted && isInterrupted())
                return false;
            Time::Sleep(s_millisecond);
        }
        return true;
    }

    /// Waits until the process is gone, for `nanoseconds` at most. `Failed` if it is still there then.
    [[nodiscard]] ProcessResult WaitForEnd(std::int64_t nanoseconds, const std::function<bool()>& isInterrupted) const
    {
        const std::int64_t deadline = Time::GetMonotonicNanoseconds() + nanoseconds;
        while (!HasEnded())
        {
            const std::int64_t remaining = deadline - Time::GetMonotonicNanoseconds();
            if (remaining <= 0)
                return ProcessResult::Failed;
            if (isInterrupted && isInterrupted())
                return ProcessResult::Interrupted;
            Pause(isInterrupted ? std::min(remaining, s_interruptionNanoseconds) : remaining);
        }
        return ProcessResult::Done;
    }

private:
    /// A process that has ended but that its parent hasn't collected yet counts as gone.
    [[nodiscard]] bool HasEnded() const
    {
        if (m_hasNoDescriptors)
        {
            const std::optional<std::string> status = ReadProcessFile(m_directory, "status");
            return !status || FindStatusValue(*status, "State:").starts_with('Z');
        }
        pollfd descriptor = {m_descriptor.Get(), POLLIN, 0};
        return poll(&descriptor, 1, 0) == 1;
    }

    /// Waits until the process ends if a descriptor reports that, else for a moment.
    void Pause(std::int64_t nanoseconds) const
    {
        if (m_hasNoDescriptors)
        {
            Time::Sleep(std::min(nanoseconds, s_pollNanoseconds));
            return;
        }
        pollfd descriptor = {m_descriptor.Get(), POLLIN, 0};
        (void)poll(&descriptor, 1, static_cast<int>(nanoseconds / s_millisecond) + 1);
    }

    pid_t m_id;
    const FileDescriptor& m_directory;
    FileDescriptor m_descriptor;
    bool m_hasNoDescriptors; ///< an older kernel, or a sandbox that hides them
};

ProcessResult AskToEnd(const EndingProcess& process, const std::function<bool()>& isInterrupted)
{
    if (!process.WaitForLoading(isInterrupted))
        return ProcessResult::Interrupted;
    if (!process.Send(SIGTERM))
        return errno == ESRCH ? ProcessResult::Done : ProcessResult::Failed;
    ProcessResult result = process.WaitForEnd(s_endNanoseconds, isInterrupted);
    if (result != ProcessResult::Failed)
        return result;
    if (!process.Send(SIGKILL))
        return errno == ESRCH ? ProcessResult::Done : ProcessResult::Failed;
    result = process.WaitForEnd(s_killNanoseconds, isInterrupted);
    if (result == ProcessResult::Failed)
        errno = ETIME;
    return result;
}

/// Whether the directory belongs to the process that was started at that time; 0 matches any time.
bool WasStartedAt(const FileDescriptor& directory, std::uint64_t startTime)
{
    ProcessRecord record;
    if (startTime == 0 || (ReadLife(directory, record) && record.startTime == startTime))
        return true;
    errno = ESRCH;
    return false;
}

} // namespace

std::uint64_t GetCurrentProcessIdPlatform()
{
    return static_cast<std::uint64_t>(getpid());
}

bool ListProcessIdsPlatform(std::vector<std::uint64_t>& ids)
{
    const std::unique_ptr<DIR, CloseDirectory> directory(opendir("/proc"));
    if (directory == nullptr)
        return false;
    while (const dirent* const entry = readdir(directory.get()))
    {
        if (const std::optional<pid_t> id = ParseProcessId(entry->d_name))
            ids.push_back(static_cast<std::uint64_t>(*id));
    }
    return true;
}

ProcessResult ReadProcessNamePlatform(std::uint64_t id, std::string& name)
{
    const FileDescriptor directory = OpenProcessDirectory(id);
    if (!directory.IsOpen())
        return ProcessResult::NoHandle;
    std::optional<std::string> found = ReadExecutableName(directory);
    if (!found)
        found = ReadCommandName(directory);
    if (!found)
        return ProcessResult::Failed;
    name = std::move(*found);
    return ProcessResult::Done;
}

bool ReadProcessRecordPlatform(std::uint64_t id, ProcessRecord& record)
{
    const FileDescriptor directory = OpenProcessDirectory(id);
    ProcessRecord found;
    if (!directory.IsOpen() || !ReadLife(directory, found))
        return false;
    found.isOfSameUser = IsOfSameUser(directory);
    record = found;
    return true;
}

bool IsOwnExecutablePlatform()
{
    const FileDescriptor directory = OpenProcessDirectory(GetCurrentProcessIdPlatform());
    std::array<char, PATH_MAX> target = {};
    const ssize_t length = readlinkat(directory.Get(), "exe", target.data(), target.size());
    if (length <= 0)
        return false;
    // Compared as texts, because some file systems give the same file another device number in each of the two. The
    // list has a line for each mapping, so it writes a line end within a path as a number.
    std::string executable(target.data(), static_cast<std::size_t>(length));
    for (std::size_t end = 0; (end = executable.find('\n', end)) != std::string::npos;)
        executable.replace(end, 1, "\\012");
    const auto ownCode = reinterpret_cast<std::uintptr_t>(&IsOwnExecutablePlatform);
    return FindMappedFile(directory, ownCode) == executable;
}

ProcessResult EndProcessPlatform(std::uint64_t id, const Termination& termination)
{
    const FileDescriptor directory = OpenProcessDirectory(id);
    if (!directory.IsOpen())
        return ProcessResult::NoHandle;
    // The directory is read after the descriptor is opened: if it still answers, both are the same process.
    const EndingProcess process(id, directory);
    if (!process.IsOpen() || !IsOfSameUser(directory) || !WasStartedAt(directory, termination.startTime))
        return ProcessResult::NoHandle;
    return AskToEnd(process, termination.isInterrupted);
}

} // namespace Orvik::System::Processes
