#pragma once

#include "Core/System/Runtime/Capability.h"
#include "Core/System/Types/Hash.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orvik::System::Runtime::Execution
{

/// The commands of all capabilities, by name and by capability. Commands are never removed. It has no lock: commands
/// are registered while the application starts, on the main thread.
class CommandRegistry
{
public:
    using CommandList = std::vector<const CommandDescription*>;
    using CommandMap = std::unordered_map<std::string, const CommandDescription*, Types::StringHash>;
    using CapabilityMap = std::unordered_map<std::string, CommandList, Types::StringHash>;

    /// Adds a command. If the name exists already, it means the new command from then on. The description isn't copied
    /// and has to outlive the registry. One without a command is an assertion failure. Always true.
    bool Register(const CapabilityBase& capability, const CommandDescription& commandDescription);

    /// In the order of registration.
    [[nodiscard]] const CommandList& GetCommands() const { return m_commands; }
    [[nodiscard]] const CommandMap& GetCommandsByName() const { return m_commandsByName; }
    /// By the name of the capability's class.
    [[nodiscard]] const CapabilityMap& GetCommandsByCapability() const { return m_commandsByCapability; }

private:
    static constexpr std::size_t s_initialBuckets = 8;

    CommandList m_commands;
    CommandMap m_commandsByName{s_initialBuckets};
    CapabilityMap m_commandsByCapability{s_initialBuckets};
};

} // namespace Orvik::System::Runtime::Execution
