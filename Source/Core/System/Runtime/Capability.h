#pragma once

#include <span>
#include <string_view>

namespace Orvik::System::Runtime::Execution
{

/// A command that a capability offers. The capability owns the record; the text is a constant.
struct CommandDescription
{
    const void* pointer = nullptr; ///< the command itself
    std::string_view name;
};

/// Something that a device can do. This program has none; a program that adds one extends this class.
class CapabilityBase
{
public:
    virtual ~CapabilityBase() = default;

    /// The name of the class, a constant.
    [[nodiscard]] virtual std::string_view GetClassName() const = 0;

    /// The commands, in their order. They live as long as the registry that takes them.
    [[nodiscard]] virtual std::span<const CommandDescription> GetCommandDescriptions() const = 0;
};

} // namespace Orvik::System::Runtime::Execution
