#include "Core/System/Runtime/CommandRegistry.h"

#include "Core/System/Error/Assertion.h"

namespace Orvik::System::Runtime::Execution
{

bool CommandRegistry::Register(const CapabilityBase& capability, const CommandDescription& commandDescription)
{
    ORVIK_ASSERT(commandDescription.pointer != nullptr,
                 "Trying to register command description without command pointer.");
    m_commands.push_back(&commandDescription);
    m_commandsByName.insert_or_assign(std::string(commandDescription.name), &commandDescription);
    m_commandsByCapability[std::string(capability.GetClassName())].push_back(&commandDescription);
    return true;
}

} // namespace Orvik::System::Runtime::Execution
