#include "Core/System/Text/Unicode.h"
#include "Systems/Windows/WindowsHeaders.h"
#include "Tests/Support/EnvironmentVariable.h"

#include <cstdlib>

namespace Orvik::Tests
{

const char* const HomeVariable = "USERPROFILE";

// By the wide calls, which no code page changes.

std::optional<std::string> EnvironmentVariable::Get(const char* name)
{
    const std::wstring wideName = System::Text::ToWide(name);
    const DWORD size = GetEnvironmentVariableW(wideName.c_str(), nullptr, 0); // with the zero behind the text
    if (size == 0)
        return std::nullopt;
    std::wstring value(size, L'\0');
    value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), size));
    return System::Text::ToUtf8(value);
}

void EnvironmentVariable::Set(const char* name, const char* value)
{
    // The system's table and the C library's. An empty value removes the variable.
    _wputenv_s(System::Text::ToWide(name).c_str(), System::Text::ToWide(value != nullptr ? value : "").c_str());
}

} // namespace Orvik::Tests
