#include "Systems/Windows/ParentConsole.h"

#include "Core/System/Error/ConsoleEvents.h"
#include "Systems/Windows/SystemCall.h"

#include <cstddef>
#include <cstdio>
#include <initializer_list>

namespace Orvik::System::Processes
{
namespace
{

using Systems::SystemCall;

/// A standard stream as the process got it; attaching to a console would replace it.
class OwnStream
{
public:
    explicit OwnStream(DWORD stream)
        : m_handle(SystemCall<&::GetStdHandle>(stream)), m_type(SystemCall<&::GetFileType>(m_handle))
    {
    }

    /// Whether the stream goes to a file, a pipe or a device, and so has to stay. Of the devices only a console has a
    /// mode, and only the programs on it can read that.
    [[nodiscard]] bool IsRedirected() const
    {
        DWORD mode = 0;
        return m_type == FILE_TYPE_DISK || m_type == FILE_TYPE_PIPE ||
               (m_type == FILE_TYPE_CHAR && SystemCall<&::GetConsoleMode>(m_handle, &mode) == FALSE);
    }

private:
    HANDLE m_handle;
    DWORD m_type;
};

/// Makes the console read what is written to it as UTF-8. Returns the code page that it had before, 0 if it stays.
UINT ChangeOutputPage()
{
    const UINT previous = SystemCall<&::GetConsoleOutputCP>();
    return previous != CP_UTF8 && SystemCall<&::SetConsoleOutputCP>(CP_UTF8) != FALSE ? previous : 0;
}

/// Opens a stream of the C library again, on the console. Without a buffer the stream writes to a console byte by byte,
/// but a console needs all bytes of a letter at once. Everything that writes to the stream flushes it.
std::FILE* ReopenOnConsole(std::FILE* stream)
{
    constexpr std::size_t bufferSize = 4096;
    std::FILE* opened = nullptr;
    SystemCall<&::freopen_s>(&opened, "CONOUT$", "w", stream);
    if (opened != nullptr)
        (void)std::setvbuf(opened, nullptr, _IOFBF, bufferSize);
    return opened;
}

} // namespace

ParentConsole::ParentConsole(bool attach)
{
    const OwnStream output(STD_OUTPUT_HANDLE);
    const OwnStream error(STD_ERROR_HANDLE);
    if (!attach || SystemCall<&::AttachConsole>(ATTACH_PARENT_PROCESS) == FALSE)
        return;
    Error::ListenToConsole();
    const bool isOutputRedirected = output.IsRedirected();
    const bool isErrorRedirected = error.IsRedirected();
    if (isOutputRedirected && isErrorRedirected)
        return;
    m_previousPage = ChangeOutputPage();
    if (!isOutputRedirected)
        m_redirectedStdout = ReopenOnConsole(stdout);
    if (!isErrorRedirected)
        m_redirectedStderr = ReopenOnConsole(stderr);
}

ParentConsole::~ParentConsole()
{
    for (std::FILE* const stream : {m_redirectedStderr, m_redirectedStdout})
    {
        if (stream == nullptr)
            continue;
        std::fflush(stream);
        std::fclose(stream);
    }
    if (m_previousPage != 0)
        SystemCall<&::SetConsoleOutputCP>(m_previousPage); // the console belongs to the parent
    SystemCall<&::FreeConsole>();
}

} // namespace Orvik::System::Processes
