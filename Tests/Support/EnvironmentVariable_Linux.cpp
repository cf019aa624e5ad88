#include "Tests/Support/EnvironmentVariable.h"

#include <cstdlib>

namespace Orvik::Tests
{

const char* const HomeVariable = "HOME";

std::optional<std::string> EnvironmentVariable::Get(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

void EnvironmentVariable::Set(const char* name, const char* value)
{
    if (value != nullptr)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

} // namespace Orvik::Tests
