#include "Tests/Support/Desktop/WindowManager.h"

#include "Tests/Support/Desktop/XSession.h"

#include <X11/Xatom.h>
#include <cstdlib>
#include <stdexcept>

namespace Orvik::Tests
{
namespace
{

ChildOptions MakeOptions(const std::string& displayName)
{
    const char* path = std::getenv("PATH");
    return {"openbox",
            {"--sm-disable"},
            {"DISPLAY=" + displayName, "HOME=/nonexistent", "PATH=" + std::string(path != nullptr ? path : "/usr/bin")},
            "/"};
}

/// A window manager that follows EWMH names its own window on the root window once it is up.
bool IsUp(const XSession& session)
{
    ::Display* display = session.GetDisplay();
    const Atom property = XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", False);
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, session.GetRoot(), property, 0, 1, False, XA_WINDOW, &type, &format, &count, &rest,
                       &data);
    if (data != nullptr)
        XFree(data);
    return count == 1;
}

} // namespace

WindowManager::WindowManager(const std::string& displayName) : m_process(MakeOptions(displayName))
{
    const XSession session(displayName);
    if (!m_process.WaitUntil([&session] { return IsUp(session); }))
        throw std::runtime_error("The window manager did not start.");
}

} // namespace Orvik::Tests
