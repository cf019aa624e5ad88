#include "Tests/Support/Desktop/Monitors.h"

#include "Tests/Support/Desktop/XSession.h"

#include <X11/extensions/Xrandr.h>
#include <stdexcept>

namespace Orvik::Tests
{
namespace
{

/// The one output of a virtual server.
RROutput GetOutput(const XSession& session)
{
    XRRScreenResources* const resources = XRRGetScreenResources(session.GetDisplay(), session.GetRoot());
    if (resources == nullptr || resources->noutput == 0)
        throw std::runtime_error("The X server has no output.");
    const RROutput output = resources->outputs[0];
    XRRFreeScreenResources(resources);
    return output;
}

void SetMonitor(const XSession& session, const std::string& name, const Area& area, bool isPrimary, RROutput output)
{
    XRRMonitorInfo monitor = {};
    monitor.name = XInternAtom(session.GetDisplay(), name.c_str(), False);
    monitor.primary = isPrimary ? True : False;
    monitor.noutput = output != None ? 1 : 0;
    monitor.outputs = &output;
    monitor.x = area.x;
    monitor.y = area.y;
    monitor.width = area.width;
    monitor.height = area.height;
    monitor.mwidth = area.width / 4;
    monitor.mheight = area.height / 4;
    XRRSetMonitor(session.GetDisplay(), session.GetRoot(), &monitor);
}

} // namespace

void SetMonitors(const std::string& displayName, const std::vector<Area>& monitors, std::size_t primary)
{
    const XSession session(displayName);
    int major = 1;
    int minor = 5;
    if (XRRQueryVersion(session.GetDisplay(), &major, &minor) == 0 || major * 10 + minor < 15)
        throw std::runtime_error("The X server has no RandR 1.5.");
    // The server's own monitor goes once its output belongs to another one.
    RROutput output = GetOutput(session);
    for (std::size_t i = 0; i < monitors.size(); ++i)
    {
        SetMonitor(session, "monitor-" + std::to_string(i), monitors[i], i == primary, output);
        output = None;
    }
    session.Synchronize();
}

FocusedWindow::FocusedWindow(const std::string& displayName, const Area& area)
    : m_session(std::make_unique<XSession>(displayName))
{
    ::Display* const display = m_session->GetDisplay();
    const ::Window window =
        XCreateSimpleWindow(display, m_session->GetRoot(), area.x, area.y, static_cast<unsigned>(area.width),
                            static_cast<unsigned>(area.height), 0, 0, 0x202020);
    XMapRaised(display, window);
    // Without a window manager it is viewable at once.
    XSetInputFocus(display, window, RevertToPointerRoot, CurrentTime);
    m_session->Synchronize();
}

FocusedWindow::~FocusedWindow() = default;

} // namespace Orvik::Tests
