#pragma once

#include <locale>
#include <stdexcept>

namespace Orvik::Tests
{

/// Makes the environment's locale that of the process, as the program of a host might: nothing that is written for
/// another program to read may depend on it. One that isn't installed leaves the C locale.
inline void UseEnvironmentLocale()
{
    try
    {
        std::locale::global(std::locale(""));
    }
    catch (const std::runtime_error&)
    {
    }
}

} // namespace Orvik::Tests
