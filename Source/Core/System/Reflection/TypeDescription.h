#pragma once

#include "Core/System/Text/Guid.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orvik::System::Reflection
{

/// A member of a described type.
struct FieldDescription
{
    std::string_view name;    ///< a constant
    std::uint32_t typeId = 0; ///< of the member's type, which need not be registered
    std::uint32_t offset = 0; ///< bytes from the beginning of the value

    bool operator==(const FieldDescription&) const = default;
};

/// A registered type.
struct TypeDescription
{
    std::uint32_t typeId = 0;
    std::uint32_t size = 0;    ///< of a value, bytes
    std::string_view typeName; ///< the full name in the source, a constant
    std::string_view name;     ///< the short name, a constant
    std::string description;   ///< one line, may be empty
    GUID guid;
    std::vector<FieldDescription> fields; ///< in the order of registration
};

/// What the registry has to know about a type before it is registered: a specialisation has the constants `typeId` (32
/// bits) and `typeName` (its full name).
template <typename T>
struct TypeIdentity;

} // namespace Orvik::System::Reflection
