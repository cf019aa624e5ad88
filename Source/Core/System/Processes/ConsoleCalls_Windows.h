#pragma once

// Private to the Windows half.

#include "Core/System/Platform/Headers/WindowsHeaders.h"

#include <cstdio>

namespace Orvik::System::Processes
{

/// The functions of the system and of the C library that a console is taken and left with. A table, so that a test can
/// stand for consoles that aren't there.
struct ConsoleCalls
{
    decltype(&::AttachConsole) attachConsole = &::AttachConsole;
    decltype(&::FreeConsole) freeConsole = &::FreeConsole;
    decltype(&::GetStdHandle) getStdHandle = &::GetStdHandle;
    decltype(&::GetFileType) getFileType = &::GetFileType;
    decltype(&::GetConsoleMode) getConsoleMode = &::GetConsoleMode;
    decltype(&::GetConsoleOutputCP) getOutputPage = &::GetConsoleOutputCP;
    decltype(&::SetConsoleOutputCP) setOutputPage = &::SetConsoleOutputCP;
    decltype(&::freopen_s) reopen = &::freopen_s;
};

[[nodiscard]] inline ConsoleCalls& GetConsoleCalls()
{
    static ConsoleCalls s_calls;
    return s_calls;
}

} // namespace Orvik::System::Processes
