#pragma once

// X11's own.

#include "Desktops/X11/X11Headers.h"

namespace Orvik::Desktops::X11
{

/// The data of an extension's event, fetched for the life of the object; nothing for other events. Xlib returns the
/// data of an event only once, so each event that is taken or looked at has one of these.
class EventData
{
public:
    EventData(::Display* display, XEvent& event) : m_display(display), m_cookie(&event.xcookie)
    {
        m_isFetched = XGetEventData(m_display, m_cookie) != False;
    }
    ~EventData()
    {
        if (m_isFetched)
            XFreeEventData(m_display, m_cookie);
    }
    EventData(const EventData&) = delete;
    EventData& operator=(const EventData&) = delete;

    /// The data if the event is of that type, which determines `T`; otherwise null.
    template <typename T>
    [[nodiscard]] const T* Get(int type) const
    {
        return m_isFetched && m_cookie->evtype == type ? static_cast<const T*>(m_cookie->data) : nullptr;
    }

private:
    ::Display* m_display;
    XGenericEventCookie* m_cookie;
    bool m_isFetched;
};

} // namespace Orvik::Desktops::X11
