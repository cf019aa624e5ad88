#include "Core/System/Processes/Terminal.h"
#include "Systems/Windows/SystemCall.h"

#include <cstdint>
#include <io.h>

namespace Orvik::System::Processes
{

using Systems::SystemCall;

// Of the devices a console alone has a mode.
bool IsTerminalPlatform(std::FILE& stream)
{
    const std::intptr_t handle = _get_osfhandle(_fileno(&stream));
    DWORD mode = 0;
    return handle != -1 && SystemCall<&::GetConsoleMode>(reinterpret_cast<HANDLE>(handle), &mode) != FALSE;
}

TerminalEncoding::TerminalEncoding()
{
    const UINT previous = SystemCall<&::GetConsoleOutputCP>();
    if (previous != 0 && previous != CP_UTF8 && SystemCall<&::SetConsoleOutputCP>(CP_UTF8) != FALSE)
        m_previousPage = previous;
}

TerminalEncoding::~TerminalEncoding()
{
    if (m_previousPage != 0)
        SystemCall<&::SetConsoleOutputCP>(m_previousPage); // the console is the parent's
}

} // namespace Orvik::System::Processes
