#pragma once

#include "Core/System/Reflection/TypeDescription.h"
#include "Core/System/Runtime/ValueTypes.h"

namespace Orvik::System::Reflection
{

/// The unsigned 64-bit type of a GUID's halves. It has an id, and no description.
inline constexpr std::uint32_t UnsignedTypeId = 0x1E599FAF;

// Type ids are constants and don't follow from the names, so a type that is renamed keeps its id.

template <>
struct TypeIdentity<Runtime::Execution::PodArray<Runtime::Execution::PodString>>
{
    static constexpr std::uint32_t typeId = 0xFB30A0D3;
    static constexpr std::string_view typeName =
        "Orvik::System::Runtime::Execution::PodArray<Orvik::System::Runtime::Execution::PodString>";
};

template <>
struct TypeIdentity<Runtime::Execution::PodArray<std::int64_t>>
{
    static constexpr std::uint32_t typeId = 0x94384FC2;
    static constexpr std::string_view typeName = "Orvik::System::Runtime::Execution::PodArray<int64_t>";
};

template <>
struct TypeIdentity<Runtime::Execution::PodArray<Runtime::Execution::Size2>>
{
    static constexpr std::uint32_t typeId = 0x5C86DD72;
    static constexpr std::string_view typeName =
        "Orvik::System::Runtime::Execution::PodArray<Orvik::System::Runtime::Execution::Size2>";
};

template <>
struct TypeIdentity<Types::EnumValue<Runtime::AutomationTarget::TargetOperatingSystem>>
{
    static constexpr std::uint32_t typeId = 0x71E646EC;
    static constexpr std::string_view typeName =
        "Orvik::System::Types::EnumValue<Orvik::System::Runtime::AutomationTarget::TargetOperatingSystem>";
};

template <>
struct TypeIdentity<Types::EnumValue<Runtime::Device::CapabilityClassType>>
{
    static constexpr std::uint32_t typeId = 0x17364D25;
    static constexpr std::string_view typeName =
        "Orvik::System::Types::EnumValue<Orvik::System::Runtime::Device::CapabilityClassType>";
};

template <>
struct TypeIdentity<Types::EnumValue<Runtime::Device::CapabilityState>>
{
    static constexpr std::uint32_t typeId = 0x51394894;
    static constexpr std::string_view typeName =
        "Orvik::System::Types::EnumValue<Orvik::System::Runtime::Device::CapabilityState>";
};

template <>
struct TypeIdentity<Types::EnumValue<Runtime::Execution::CommandValueType>>
{
    static constexpr std::uint32_t typeId = 0x8C021B1E;
    static constexpr std::string_view typeName =
        "Orvik::System::Types::EnumValue<Orvik::System::Runtime::Execution::CommandValueType>";
};

template <>
struct TypeIdentity<Types::EnumValue<Runtime::Execution::FundamentalValueType>>
{
    static constexpr std::uint32_t typeId = 0x1542118E;
    static constexpr std::string_view typeName =
        "Orvik::System::Types::EnumValue<Orvik::System::Runtime::Execution::FundamentalValueType>";
};

template <>
struct TypeIdentity<Runtime::Execution::PodString>
{
    static constexpr std::uint32_t typeId = 0x0701FC22;
    static constexpr std::string_view typeName = "Orvik::System::Runtime::Execution::PodString";
};

template <>
struct TypeIdentity<Runtime::Execution::PodBytes>
{
    static constexpr std::uint32_t typeId = 0x078672CD;
    static constexpr std::string_view typeName = "Orvik::System::Runtime::Execution::PodBytes";
};

template <>
struct TypeIdentity<Types::EnumValue<Runtime::AutomationTarget::TargetClass>>
{
    static constexpr std::uint32_t typeId = 0xCE43AF47;
    static constexpr std::string_view typeName =
        "Orvik::System::Types::EnumValue<Orvik::System::Runtime::AutomationTarget::TargetClass>";
};

template <>
struct TypeIdentity<Runtime::Execution::Image>
{
    static constexpr std::uint32_t typeId = 0x3EFC0506;
    static constexpr std::string_view typeName = "Orvik::System::Runtime::Execution::Image";
};

template <>
struct TypeIdentity<GUID>
{
    static constexpr std::uint32_t typeId = 0x6F294F69;
    static constexpr std::string_view typeName = "Orvik::System::GUID";
};

template <>
struct TypeIdentity<Runtime::Execution::Coordinate2>
{
    static constexpr std::uint32_t typeId = 0xF84CC2AD;
    static constexpr std::string_view typeName = "Orvik::System::Runtime::Execution::Coordinate2";
};

template <>
struct TypeIdentity<Runtime::Execution::Size2>
{
    static constexpr std::uint32_t typeId = 0x4C84F736;
    static constexpr std::string_view typeName = "Orvik::System::Runtime::Execution::Size2";
};

template <>
struct TypeIdentity<std::int64_t>
{
    static constexpr std::uint32_t typeId = 0xD800F115;
    static constexpr std::string_view typeName = "int64_t";
};

template <>
struct TypeIdentity<double>
{
    static constexpr std::uint32_t typeId = 0xE4296A73;
    static constexpr std::string_view typeName = "double";
};

} // namespace Orvik::System::Reflection
