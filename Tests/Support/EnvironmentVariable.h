#pragma once

#include <optional>
#include <string>

namespace Orvik::Tests
{

/// The variable that holds the user's home directory.
extern const char* const HomeVariable;

/// Sets or removes an environment variable; the object's end restores the former value. Texts are UTF-8. One thread.
class EnvironmentVariable
{
public:
    /// A null `value` removes the variable.
    EnvironmentVariable(const char* name, const char* value);
    ~EnvironmentVariable();
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    [[nodiscard]] static std::optional<std::string> Get(const char* name);
    static void Set(const char* name, const char* value);

    std::string m_name;
    std::optional<std::string> m_before;
};

} // namespace Orvik::Tests
