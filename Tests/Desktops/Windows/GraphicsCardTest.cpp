#include "Desktops/Windows/GraphicsCard.h"

#include "Tests/Support/ReplacedCalls_Windows.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Orvik::Desktops::Windows
{
namespace
{

constexpr const wchar_t* s_card = L"PCI\\VEN_10DE&DEV_2204&SUBSYS_00000000&REV_A1";
constexpr DWORD s_accelerated = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;

struct Adapter
{
    std::wstring identifier;
    DWORD state = DISPLAY_DEVICE_ATTACHED_TO_DESKTOP;
};

/// A machine: its session, its adapters and the flags of its pixel formats.
struct Machine
{
    int isRemote = 0;
    std::vector<Adapter> adapters = {{s_card}};
    std::vector<DWORD> formats = {s_accelerated};
    int formatCalls = 0; ///< each may load a driver
};
Machine s_machine;

BOOL WINAPI EnumAdapters(LPCWSTR name, DWORD index, PDISPLAY_DEVICEW device, DWORD flags)
{
    EXPECT_EQ(name, nullptr);
    EXPECT_EQ(flags, 0U);
    EXPECT_EQ(device->cb, sizeof(DISPLAY_DEVICEW));
    if (index >= s_machine.adapters.size())
        return FALSE;
    const Adapter& adapter = s_machine.adapters[index];
    device->StateFlags = adapter.state;
    *std::copy(adapter.identifier.begin(), adapter.identifier.end(), device->DeviceID) = L'\0';
    return TRUE;
}

int WINAPI DescribeFormat(HDC context, int index, UINT size, PIXELFORMATDESCRIPTOR* format)
{
    ++s_machine.formatCalls;
    EXPECT_NE(context, nullptr);
    EXPECT_EQ(size, sizeof(PIXELFORMATDESCRIPTOR));
    const int count = static_cast<int>(s_machine.formats.size());
    if (index < 1 || index > count)
        return 0;
    if (format != nullptr)
        format->dwFlags = s_machine.formats[static_cast<std::size_t>(index - 1)];
    return count;
}

class GraphicsCardWindows : public testing::Test
{
protected:
    GraphicsCardWindows()
    {
        s_machine = {};
        Tests::ReplacedCalls& calls = m_calls;
        calls.Of<&::GetSystemMetrics>() = [](int which) { return which == SM_REMOTESESSION ? s_machine.isRemote : -1; };
        calls.Of<&::EnumDisplayDevicesW>() = &EnumAdapters;
        calls.Of<&::DescribePixelFormat>() = &DescribeFormat;
    }

    Tests::ReplacedCalls m_calls;

    static void ExpectNone(const char* reason)
    {
        const GraphicsCard card = FindGraphicsCard();
        EXPECT_FALSE(card.isReachable);
        EXPECT_STREQ(card.reason, reason);
    }
};

TEST_F(GraphicsCardWindows, IsThereWhereADisplayHangsOnOneWhoseDriverHasOpenGL)
{
    const GraphicsCard card = FindGraphicsCard();
    EXPECT_TRUE(card.isReachable);
    EXPECT_STREQ(card.reason, "a display hangs on a graphics card whose driver has OpenGL");
}

TEST_F(GraphicsCardWindows, IsOutOfReachInARemoteSession)
{
    s_machine.isRemote = 1;
    ExpectNone("the session is a remote one");
    EXPECT_EQ(s_machine.formatCalls, 0);
}

TEST_F(GraphicsCardWindows, HasAMaker)
{
    for (const wchar_t* const identifier :
         {L"", L"ROOT\\BASICDISPLAY", L"ROOT\\BASICRENDER", L"VMBUS\\{DA0A7802-E377-4AAC-8E77-0558EB1073F8}",
          L"PCI\\VEN_0000&DEV_0000&SUBSYS_00000000&REV_00", L"PCI\\VEN_10005&DEV_0000&SUBSYS_00000000&REV_00",
          L"PCI\\VEN_10DE", L"PCI\\VEN_"})
    {
        s_machine.adapters = {{identifier}};
        ExpectNone("no display hangs on a graphics card");
    }
    s_machine.adapters.clear();
    ExpectNone("no display hangs on a graphics card");
    EXPECT_EQ(s_machine.formatCalls, 0) << "no driver is asked";
}

TEST_F(GraphicsCardWindows, IsOneThatTheDesktopLiesOn)
{
    s_machine.adapters = {{s_card, 0}, {L"ROOT\\BASICDISPLAY"}};
    ExpectNone("no display hangs on a graphics card");
    s_machine.adapters = {{L"ROOT\\BASICDISPLAY"}, {s_card}};
    EXPECT_TRUE(FindGraphicsCard().isReachable);
}

TEST_F(GraphicsCardWindows, HasADriverThatDrawsOpenGLOnWindows)
{
    for (const DWORD flags : {s_accelerated | PFD_GENERIC_FORMAT, s_accelerated & ~PFD_DRAW_TO_WINDOW,
                              s_accelerated & ~PFD_SUPPORT_OPENGL, s_accelerated & ~PFD_DOUBLEBUFFER})
    {
        s_machine.formats = {flags, flags};
        ExpectNone("the graphics card's driver has no OpenGL");
    }
    s_machine.formats.clear();
    ExpectNone("the graphics card's driver has no OpenGL");
    s_machine.formats = {s_accelerated | PFD_GENERIC_FORMAT, s_accelerated};
    EXPECT_TRUE(FindGraphicsCard().isReachable);
    s_machine.formats = {s_accelerated | PFD_GENERIC_FORMAT | PFD_GENERIC_ACCELERATED};
    EXPECT_TRUE(FindGraphicsCard().isReachable) << "a small driver of a card's maker";
}

} // namespace
} // namespace Orvik::Desktops::Windows
