#include "Desktops/Windows/MessageNames.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

namespace Orvik::Desktops::Windows
{
namespace
{

// The numbers of the system's documentation, so that the table isn't compared with itself.
// clang-format off
const std::map<UINT, std::string> s_names = {
    {0x0000, "WM_NULL"},
    {0x0001, "WM_CREATE"},
    {0x0002, "WM_DESTROY"},
    {0x0003, "WM_MOVE"},
    {0x0005, "WM_SIZE"},
    {0x0006, "WM_ACTIVATE"},
    {0x0007, "WM_SETFOCUS"},
    {0x0008, "WM_KILLFOCUS"},
    {0x000A, "WM_ENABLE"},
    {0x000B, "WM_SETREDRAW"},
    {0x000C, "WM_SETTEXT"},
    {0x000D, "WM_GETTEXT"},
    {0x000E, "WM_GETTEXTLENGTH"},
    {0x000F, "WM_PAINT"},
    {0x0010, "WM_CLOSE"},
    {0x0014, "WM_ERASEBKGND"},
    {0x0018, "WM_SHOWWINDOW"},
    {0x001C, "WM_ACTIVATEAPP"},
    {0x0020, "WM_SETCURSOR"},
    {0x0024, "WM_GETMINMAXINFO"},
    {0x003D, "WM_GETOBJECT"},
    {0x0046, "WM_WINDOWPOSCHANGING"},
    {0x0047, "WM_WINDOWPOSCHANGED"},
    {0x007E, "WM_DISPLAYCHANGE"},
    {0x007F, "WM_GETICON"},
    {0x0081, "WM_NCCREATE"},
    {0x0083, "WM_NCCALCSIZE"},
    {0x0084, "WM_NCHITTEST"},
    {0x0085, "WM_NCPAINT"},
    {0x0086, "WM_NCACTIVATE"},
    {0x00A0, "WM_NCMOUSEMOVE"},
    {0x00A1, "WM_NCLBUTTONDOWN"},
    {0x00A2, "WM_NCLBUTTONUP"},
    {0x0100, "WM_KEYDOWN"},
    {0x0101, "WM_KEYUP"},
    {0x0104, "WM_SYSKEYDOWN"},
    {0x0105, "WM_SYSKEYUP"},
    {0x0112, "WM_SYSCOMMAND"},
    {0x0116, "WM_INITMENU"},
    {0x0117, "WM_INITMENUPOPUP"},
    {0x011F, "WM_MENUSELECT"},
    {0x0121, "WM_ENTERIDLE"},
    {0x0200, "WM_MOUSEMOVE"},
    {0x0201, "WM_LBUTTONDOWN"},
    {0x0202, "WM_LBUTTONUP"},
    {0x0204, "WM_RBUTTONDOWN"},
    {0x0205, "WM_RBUTTONUP"},
    {0x020A, "WM_MOUSEWHEEL"},
    {0x0211, "WM_ENTERMENULOOP"},
    {0x0212, "WM_EXITMENULOOP"},
    {0x0219, "WM_DEVICECHANGE"},
    {0x0281, "WM_IME_SETCONTEXT"},
    {0x0282, "WM_IME_NOTIFY"},
    {0x0283, "WM_IME_CONTROL"},
    {0x0288, "WM_IME_REQUEST"},
    {0x02A2, "WM_NCMOUSELEAVE"},
    {0x0312, "WM_HOTKEY"},
    {0x031F, "WM_DWMNCRENDERINGCHANGED"},
};
// clang-format on

TEST(MessageNames, EachNumberHasItsNameAndAllOthersAreUnknown)
{
    EXPECT_EQ(s_names.size(), 58U);
    for (UINT message = 0; message <= 0xFFFF; ++message)
    {
        const auto name = s_names.find(message);
        EXPECT_EQ(GetMessageName(message), name != s_names.end() ? name->second : "Unknown") << message;
    }
    EXPECT_STREQ(GetMessageName(0xFFFFFFFF), "Unknown");
}

} // namespace
} // namespace Orvik::Desktops::Windows
