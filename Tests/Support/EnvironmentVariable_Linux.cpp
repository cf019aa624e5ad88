#include "Tests/Support/EnvironmentVariable.h"

#include <cstdlib>

namespace Orvik::Tests
{

const char* const HomeVariable = "HOME";

void EnvironmentVariable::Set(const char* name, const char* value)
{
    if (value != nullptr)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

} // namespace Orvik::Tests
