#pragma once

#include "Core/System/Reflection/TypeDescription.h"
#include "Core/System/Runtime/ValueTypes.h"
#include "Core/System/Text/CharacterArray.h"

namespace Orvik::System::Reflection
{

/// The unsigned 64-bit type of a GUID's halves. It has an id, and no description.
inline constexpr std::uint32_t UnsignedTypeId = 0x1E599FAF;

/// What a specialisation of `TypeIdentity` inherits.
template <std::uint32_t Id, Constexpr::CharacterArray<128> Name>
struct Identity
{
    static constexpr std::uint32_t typeId = Id;
    static constexpr std::string_view typeName = Name.characters;
};

// Type ids are constants and don't follow from the names, so a type that is renamed keeps its id.

template <>
struct TypeIdentity<Runtime::Execution::PodArray<Runtime::Execution::PodString>>
    : Identity<0xFB30A0D3, "Orvik::System::Runtime::Execution::PodArray<Orvik::System::Runtime::Execution::PodString>">
{
};

template <>
struct TypeIdentity<Runtime::Execution::PodArray<std::int64_t>>
    : Identity<0x94384FC2, "Orvik::System::Runtime::Execution::PodArray<int64_t>">
{
};

template <>
struct TypeIdentity<Runtime::Execution::PodArray<Runtime::Execution::Size2>>
    : Identity<0x5C86DD72, "Orvik::System::Runtime::Execution::PodArray<Orvik::System::Runtime::Execution::Size2>">
{
};

template <>
struct TypeIdentity<Types::EnumValue<Runtime::AutomationTarget::TargetOperatingSystem>>
    : Identity<0x71E646EC,
               "Orvik::System::Types::EnumValue<Orvik::System::Runtime::AutomationTarget::TargetOperatingSystem>">
{
};

template <>
struct TypeIdentity<Types::EnumValue<Runtime::Device::CapabilityClassType>>
    : Identity<0x17364D25, "Orvik::System::Types::EnumValue<Orvik::System::Runtime::Device::CapabilityClassType>">
{
};

template <>
struct TypeIdentity<Types::EnumValue<Runtime::Device::CapabilityState>>
    : Identity<0x51394894, "Orvik::System::Types::EnumValue<Orvik::System::Runtime::Device::CapabilityState>">
{
};

template <>
struct TypeIdentity<Types::EnumValue<Runtime::Execution::CommandValueType>>
    : Identity<0x8C021B1E, "Orvik::System::Types::EnumValue<Orvik::System::Runtime::Execution::CommandValueType>">
{
};

template <>
struct TypeIdentity<Types::EnumValue<Runtime::Execution::FundamentalValueType>>
    : Identity<0x1542118E, "Orvik::System::Types::EnumValue<Orvik::System::Runtime::Execution::FundamentalValueType>">
{
};

template <>
struct TypeIdentity<Runtime::Execution::PodString>
    : Identity<0x0701FC22, "Orvik::System::Runtime::Execution::PodString">
{
};

template <>
struct TypeIdentity<Runtime::Execution::PodBytes> : Identity<0x078672CD, "Orvik::System::Runtime::Execution::PodBytes">
{
};

template <>
struct TypeIdentity<Types::EnumValue<Runtime::AutomationTarget::TargetClass>>
    : Identity<0xCE43AF47, "Orvik::System::Types::EnumValue<Orvik::System::Runtime::AutomationTarget::TargetClass>">
{
};

template <>
struct TypeIdentity<Runtime::Execution::Image> : Identity<0x3EFC0506, "Orvik::System::Runtime::Execution::Image">
{
};

template <>
struct TypeIdentity<GUID> : Identity<0x6F294F69, "Orvik::System::GUID">
{
};

template <>
struct TypeIdentity<Runtime::Execution::Coordinate2>
    : Identity<0xF84CC2AD, "Orvik::System::Runtime::Execution::Coordinate2">
{
};

template <>
struct TypeIdentity<Runtime::Execution::Size2> : Identity<0x4C84F736, "Orvik::System::Runtime::Execution::Size2">
{
};

template <>
struct TypeIdentity<std::int64_t> : Identity<0xD800F115, "int64_t">
{
};

template <>
struct TypeIdentity<double> : Identity<0xE4296A73, "double">
{
};

} // namespace Orvik::System::Reflection
