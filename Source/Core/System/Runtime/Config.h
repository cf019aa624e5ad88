#pragma once

#include "Core/System/Text/CharacterArray.h"
#include "Core/System/Text/Guid.h"

#include <cstdint>
#include <rapidjson/fwd.h>
#include <string_view>

namespace Orvik::System::Runtime
{

/// A typed configuration: defaults first, then a section of the document on top.
class IConfig
{
public:
    virtual ~IConfig() = default;

    [[nodiscard]] virtual std::string_view GetName() const = 0;
    /// Writes the identity of the type to `guid` and returns it.
    virtual const GUID& GetGuid(GUID& guid) const = 0;
    /// Writes the key in the cache to `typeId` and returns it.
    virtual std::uint32_t GetTypeId(std::uint32_t& typeId) const = 0;
    /// Gives all fields their default values. Runs once, before any `Load`.
    virtual void SetDefaults() = 0;
    /// Applies a section, a JSON object that is only valid during the call. False refuses it.
    [[nodiscard]] virtual bool Load(const rapidjson::Value* section) = 0;
};

/// The base of every configuration: its identity at compile time. `Derived` has a static constant `s_typeID`.
template <typename Derived, Constexpr::CharacterArray<128> Name, std::uint64_t NameLength, GUID Guid>
class Config : public IConfig
{
public:
    [[nodiscard]] std::string_view GetName() const override { return {Name.characters, NameLength}; }

    const GUID& GetGuid(GUID& guid) const override
    {
        guid = Guid;
        return guid;
    }

    std::uint32_t GetTypeId(std::uint32_t& typeId) const override
    {
        typeId = Derived::s_typeID;
        return typeId;
    }
};

} // namespace Orvik::System::Runtime
