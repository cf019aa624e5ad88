#pragma once

#include <cstdint>

// The value types of commands' arguments and results, and the enums around them. This program only knows their
// descriptions: the code that adds commands gives the handles their meaning.

namespace Orvik::System::Types
{

/// An enum's value in eight bytes.
template <typename Enum>
struct EnumValue
{
    std::uint64_t handle = 0;
};

} // namespace Orvik::System::Types

namespace Orvik::System::Runtime::AutomationTarget
{

enum class TargetOperatingSystem : std::uint32_t;
enum class TargetClass : std::uint32_t;

} // namespace Orvik::System::Runtime::AutomationTarget

namespace Orvik::System::Runtime::Device
{

enum class CapabilityClassType : std::uint32_t;
enum class CapabilityState : std::uint32_t;

} // namespace Orvik::System::Runtime::Device

namespace Orvik::System::Runtime::Execution
{

enum class CommandValueType : std::uint32_t;
enum class FundamentalValueType : std::uint32_t;

struct PodString
{
    std::uint64_t handle = 0;
};

struct PodBytes
{
    std::uint64_t handle = 0;
};

template <typename Element>
struct PodArray
{
    std::uint64_t handle = 0;
};

struct Image
{
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::int64_t bitsPerPixel = 0;
    PodBytes bytes;
};

struct Coordinate2
{
    std::int64_t x = 0;
    std::int64_t y = 0;
};

struct Size2
{
    std::int64_t width = 0;
    std::int64_t height = 0;
};

} // namespace Orvik::System::Runtime::Execution
