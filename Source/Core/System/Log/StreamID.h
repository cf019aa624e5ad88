#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace Orvik::System::Log
{

/// The streams that a message can belong to, one bit each, so that an integer holds a set of them. The names are shared
/// with other programs of the family; this one writes to Default, System, Graphics, SnipBench and DisplayCache.
enum StreamID : std::uint32_t
{
    Default = 0x1,
    System = 0x2,
    Graphics = 0x4,
    Network = 0x8,
    Api = 0x10,
    Configuration = 0x20,
    Controller = 0x40,
    ExecutionEngine = 0x80,
    Service = 0x100,
    SnipBench = 0x200,
    Systems = 0x400,
    ToolsRemoteDesktop = 0x800,
    DisplayCache = 0x1000,
    ThreadingSystem = 0x2000,
    ExecutionPipeline = 0x4000,
    DisplaySystem = 0x8000,
    AutomationTargetSystem = 0x10000,
    AdbSystem = 0x20000,
    BluetoothSystem = 0x40000,
    LicenseSystem = 0x80000,
    MediaSystem = 0x100000,
    ChangeDetectionSystem = 0x200000,
    OverlaySystem = 0x400000,
    CommunicationSystem = 0x800000,
    RemoteDesktopSystem = 0x1000000,
    SessionSystem = 0x2000000,
};

inline constexpr std::uint32_t AllStreams = 0x3FFFFFF;
inline constexpr std::uint32_t StreamCount = 26;

/// The severities, in rising order. `Always` always passes and has no word in the line.
enum class MessageTypeID : std::uint8_t
{
    Debug,
    Verbose,
    Info,
    Warning,
    Error,
    Critical,
    Always,
};

inline constexpr std::array<std::string_view, 7> messageTypeIDNames = {"Debug", "Verbose",  "Info",  "Warning",
                                                                       "Error", "Critical", "Always"};

} // namespace Orvik::System::Log
