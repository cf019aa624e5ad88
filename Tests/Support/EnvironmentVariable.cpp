#include "Tests/Support/EnvironmentVariable.h"

#include <cstdlib>

namespace Orvik::Tests
{

EnvironmentVariable::EnvironmentVariable(const char* name, const char* value) : m_name(name)
{
    if (const char* const before = std::getenv(name))
    {
        m_wasSet = true;
        m_before = before;
    }
    Set(name, value);
}

EnvironmentVariable::~EnvironmentVariable()
{
    Set(m_name.c_str(), m_wasSet ? m_before.c_str() : nullptr);
}

} // namespace Orvik::Tests
