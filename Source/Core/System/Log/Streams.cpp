#include "Core/System/Log/Streams.h"

#include "Core/System/Error/Assertion.h"

#include <array>
#include <bit>

namespace Orvik::System::Log
{
namespace
{

constexpr std::array<std::string_view, StreamCount> s_streamNames = {
    "Default",
    "System",
    "Graphics",
    "Network",
    "Api",
    "Configuration",
    "Controller",
    "ExecutionEngine",
    "Service",
    "SnipBench",
    "Systems",
    "ToolsRemoteDesktop",
    "DisplayCache",
    "ThreadingSystem",
    "ExecutionPipeline",
    "DisplaySystem",
    "AutomationTargetSystem",
    "AdbSystem",
    "BluetoothSystem",
    "LicenseSystem",
    "MediaSystem",
    "ChangeDetectionSystem",
    "OverlaySystem",
    "CommunicationSystem",
    "RemoteDesktopSystem",
    "SessionSystem",
};

} // namespace

std::string_view GetStreamName(std::uint32_t stream)
{
    if (std::has_single_bit(stream) && (stream & AllStreams) != 0)
        return s_streamNames[static_cast<std::size_t>(std::countr_zero(stream))];
    ORVIK_ASSERT(false, "Implementation of case directive is missing.");
    return {};
}

} // namespace Orvik::System::Log
