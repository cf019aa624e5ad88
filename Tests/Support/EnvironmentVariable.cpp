#include "Tests/Support/EnvironmentVariable.h"

namespace Orvik::Tests
{

EnvironmentVariable::EnvironmentVariable(const char* name, const char* value) : m_name(name), m_before(Get(name))
{
    Set(name, value);
}

EnvironmentVariable::~EnvironmentVariable()
{
    Set(m_name.c_str(), m_before ? m_before->c_str() : nullptr);
}

} // namespace Orvik::Tests
