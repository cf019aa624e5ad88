#pragma once

#include <string>

namespace Orvik::Tests
{

/// The variable that tells the user's home directory.
extern const char* const HomeVariable;

/// Sets or removes an environment variable; the object's end brings the former value back. One thread.
class EnvironmentVariable
{
public:
    /// A null `value` removes the variable.
    EnvironmentVariable(const char* name, const char* value);
    ~EnvironmentVariable();
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    static void Set(const char* name, const char* value);

    std::string m_name;
    bool m_wasSet = false;
    std::string m_before;
};

} // namespace Orvik::Tests
