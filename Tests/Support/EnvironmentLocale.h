#pragma once

#include <locale>
#include <stdexcept>

namespace Orvik::Tests
{

/// Makes the environment's locale that of the process, as a program that contains this one might: nothing that other
/// programs read may depend on it. If the locale isn't installed, the C locale stays.
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
