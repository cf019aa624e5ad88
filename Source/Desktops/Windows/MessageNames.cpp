#include "Desktops/Windows/MessageNames.h"

#include <algorithm>
#include <array>

namespace Orvik::Desktops::Windows
{
namespace
{

struct NamedMessage
{
    UINT message;
    const char* name;
};

/// In the order of their numbers.
// clang-format off
constexpr std::array<NamedMessage, 58> s_names = {{
    {WM_NULL, "WM_NULL"},
    {WM_CREATE, "WM_CREATE"},
    {WM_DESTROY, "WM_DESTROY"},
    {WM_MOVE, "WM_MOVE"},
    {WM_SIZE, "WM_SIZE"},
    {WM_ACTIVATE, "WM_ACTIVATE"},
    {WM_SETFOCUS, "WM_SETFOCUS"},
    {WM_KILLFOCUS, "WM_KILLFOCUS"},
    {WM_ENABLE, "WM_ENABLE"},
    {WM_SETREDRAW, "WM_SETREDRAW"},
    {WM_SETTEXT, "WM_SETTEXT"},
    {WM_GETTEXT, "WM_GETTEXT"},
    {WM_GETTEXTLENGTH, "WM_GETTEXTLENGTH"},
    {WM_PAINT, "WM_PAINT"},
    {WM_CLOSE, "WM_CLOSE"},
    {WM_ERASEBKGND, "WM_ERASEBKGND"},
    {WM_SHOWWINDOW, "WM_SHOWWINDOW"},
    {WM_ACTIVATEAPP, "WM_ACTIVATEAPP"},
    {WM_SETCURSOR, "WM_SETCURSOR"},
    {WM_GETMINMAXINFO, "WM_GETMINMAXINFO"},
    {WM_GETOBJECT, "WM_GETOBJECT"},
    {WM_WINDOWPOSCHANGING, "WM_WINDOWPOSCHANGING"},
    {WM_WINDOWPOSCHANGED, "WM_WINDOWPOSCHANGED"},
    {WM_DISPLAYCHANGE, "WM_DISPLAYCHANGE"},
    {WM_GETICON, "WM_GETICON"},
    {WM_NCCREATE, "WM_NCCREATE"},
    {WM_NCCALCSIZE, "WM_NCCALCSIZE"},
    {WM_NCHITTEST, "WM_NCHITTEST"},
    {WM_NCPAINT, "WM_NCPAINT"},
    {WM_NCACTIVATE, "WM_NCACTIVATE"},
    {WM_NCMOUSEMOVE, "WM_NCMOUSEMOVE"},
    {WM_NCLBUTTONDOWN, "WM_NCLBUTTONDOWN"},
    {WM_NCLBUTTONUP, "WM_NCLBUTTONUP"},
    {WM_KEYDOWN, "WM_KEYDOWN"},
    {WM_KEYUP, "WM_KEYUP"},
    {WM_SYSKEYDOWN, "WM_SYSKEYDOWN"},
    {WM_SYSKEYUP, "WM_SYSKEYUP"},
    {WM_SYSCOMMAND, "WM_SYSCOMMAND"},
    {WM_INITMENU, "WM_INITMENU"},
    {WM_INITMENUPOPUP, "WM_INITMENUPOPUP"},
    {WM_MENUSELECT, "WM_MENUSELECT"},
    {WM_ENTERIDLE, "WM_ENTERIDLE"},
    {WM_MOUSEMOVE, "WM_MOUSEMOVE"},
    {WM_LBUTTONDOWN, "WM_LBUTTONDOWN"},
    {WM_LBUTTONUP, "WM_LBUTTONUP"},
    {WM_RBUTTONDOWN, "WM_RBUTTONDOWN"},
    {WM_RBUTTONUP, "WM_RBUTTONUP"},
    {WM_MOUSEWHEEL, "WM_MOUSEWHEEL"},
    {WM_ENTERMENULOOP, "WM_ENTERMENULOOP"},
    {WM_EXITMENULOOP, "WM_EXITMENULOOP"},
    {WM_DEVICECHANGE, "WM_DEVICECHANGE"},
    {WM_IME_SETCONTEXT, "WM_IME_SETCONTEXT"},
    {WM_IME_NOTIFY, "WM_IME_NOTIFY"},
    {WM_IME_CONTROL, "WM_IME_CONTROL"},
    {WM_IME_REQUEST, "WM_IME_REQUEST"},
    {WM_NCMOUSELEAVE, "WM_NCMOUSELEAVE"},
    {WM_HOTKEY, "WM_HOTKEY"},
    {WM_DWMNCRENDERINGCHANGED, "WM_DWMNCRENDERINGCHANGED"},
}};
// clang-format on

static_assert(std::ranges::is_sorted(s_names, {}, &NamedMessage::message));

} // namespace

const char* GetMessageName(UINT message) noexcept
{
    const auto* const found = std::ranges::lower_bound(s_names, message, {}, &NamedMessage::message);
    return found != s_names.end() && found->message == message ? found->name : "Unknown";
}

} // namespace Orvik::Desktops::Windows
