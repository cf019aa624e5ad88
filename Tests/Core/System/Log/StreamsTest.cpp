#include "Core/System/Log/Streams.h"
#include "Tests/Support/AssertionTrap.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Log
{
namespace
{

struct NamedStream
{
    std::uint32_t value;
    const char* name;
};

constexpr std::array<NamedStream, 26> s_streams = {{
    {0x1, "Default"},
    {0x2, "System"},
    {0x4, "Graphics"},
    {0x8, "Network"},
    {0x10, "Api"},
    {0x20, "Configuration"},
    {0x40, "Controller"},
    {0x80, "ExecutionEngine"},
    {0x100, "Service"},
    {0x200, "SnipBench"},
    {0x400, "Systems"},
    {0x800, "ToolsRemoteDesktop"},
    {0x1000, "DisplayCache"},
    {0x2000, "ThreadingSystem"},
    {0x4000, "ExecutionPipeline"},
    {0x8000, "DisplaySystem"},
    {0x10000, "AutomationTargetSystem"},
    {0x20000, "AdbSystem"},
    {0x40000, "BluetoothSystem"},
    {0x80000, "LicenseSystem"},
    {0x100000, "MediaSystem"},
    {0x200000, "ChangeDetectionSystem"},
    {0x400000, "OverlaySystem"},
    {0x800000, "CommunicationSystem"},
    {0x1000000, "RemoteDesktopSystem"},
    {0x2000000, "SessionSystem"},
}};

TEST(Streams, EachBitHasItsName)
{
    std::uint32_t all = 0;
    for (const NamedStream& stream : s_streams)
    {
        EXPECT_EQ(GetStreamName(stream.value), stream.name);
        all |= stream.value;
    }
    EXPECT_EQ(all, 0x3FFFFFFU);
    EXPECT_EQ(AllStreams, 0x3FFFFFFU);
}

TEST(Streams, ProgramsStreamsHaveTheirBits)
{
    EXPECT_EQ(Default, 0x1U);
    EXPECT_EQ(System, 0x2U);
    EXPECT_EQ(Graphics, 0x4U);
    EXPECT_EQ(SnipBench, 0x200U);
    EXPECT_EQ(DisplayCache, 0x1000U);
}

TEST(Streams, WhatIsNoSingleStreamFails)
{
    for (const std::uint32_t value : {0x0U, 0x3U, 0x4000000U, 0x80000000U, 0x3FFFFFFU, 0xFFFFFFFFU})
        EXPECT_ASSERTION((void)GetStreamName(value), "false", "Implementation of case directive is missing.");
}

TEST(Streams, WhereSitesGoOnWhatIsNoSingleStreamHasNoName)
{
    const Tests::AssertionList failed;
    EXPECT_EQ(GetStreamName(0x3), "");
    EXPECT_EQ(Tests::AssertionList::Take().size(), 1U);
}

TEST(Streams, SeveritiesRise)
{
    EXPECT_EQ(static_cast<int>(MessageTypeID::Debug), 0);
    EXPECT_EQ(static_cast<int>(MessageTypeID::Verbose), 1);
    EXPECT_EQ(static_cast<int>(MessageTypeID::Info), 2);
    EXPECT_EQ(static_cast<int>(MessageTypeID::Warning), 3);
    EXPECT_EQ(static_cast<int>(MessageTypeID::Error), 4);
    EXPECT_EQ(static_cast<int>(MessageTypeID::Critical), 5);
    EXPECT_EQ(static_cast<int>(MessageTypeID::Always), 6);
    const std::array<std::string_view, 7> names = {"Debug", "Verbose",  "Info",  "Warning",
                                                   "Error", "Critical", "Always"};
    EXPECT_EQ(messageTypeIDNames, names);
}

} // namespace
} // namespace Orvik::System::Log
