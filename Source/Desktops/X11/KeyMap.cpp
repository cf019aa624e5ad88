#include "Desktops/X11/KeyMap.h"

#include "Desktops/Xkb/KeyTable.h"

#include <X11/XKBlib.h>

namespace Orvik::Desktops::X11
{
namespace
{

// Most keys have fewer groups than the layout. This look-up counts by the key's own, where one by group and level would
// find nothing on the arrow keys in a second layout.
KeySym GetSymbol(::Display* display, unsigned int keycode, unsigned int group)
{
    unsigned int ignored = 0;
    KeySym symbol = NoSymbol;
    XkbLookupKeySym(display, static_cast<::KeyCode>(keycode), group, &ignored, &symbol);
    return symbol;
}

/// The layout that was in force at the event, and no level of it but the first.
unsigned int GetGroup(const XKeyEvent& event)
{
    return XkbBuildCoreState(0U, XkbGroupForCoreState(event.state));
}

} // namespace

KeySym GetUnshiftedSymbol(const XKeyEvent& event)
{
    return GetSymbol(event.display, event.keycode, GetGroup(event));
}

KeyCode TranslateKey(const XKeyEvent& event)
{
    const unsigned int group = GetGroup(event);
    return Xkb::TranslateKey(event.keycode, [&event, group](unsigned int keycode)
                             { return static_cast<std::uint32_t>(GetSymbol(event.display, keycode, group)); });
}

bool IsRepeatPair(const XKeyEvent& release, const XEvent& next)
{
    return next.type == KeyPress && next.xkey.window == release.window && next.xkey.keycode == release.keycode &&
           next.xkey.time == release.time;
}

} // namespace Orvik::Desktops::X11
