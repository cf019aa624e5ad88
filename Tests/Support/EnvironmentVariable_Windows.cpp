#include "Tests/Support/EnvironmentVariable.h"

#include <cstdlib>

namespace Orvik::Tests
{

const char* const HomeVariable = "USERPROFILE";

void EnvironmentVariable::Set(const char* name, const char* value)
{
    _putenv_s(name, value != nullptr ? value : ""); // an empty value removes the variable
}

} // namespace Orvik::Tests
