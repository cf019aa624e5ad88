#include "Tests/Support/Desktop/OverlayWatcher.h"

#include "Tests/Support/Desktop/CompositorClient.h"
#include "Tests/Support/Desktop/ServerResources.h"
#include "Tests/Support/Desktop/XSession.h"

#include <algorithm>
#include <span>
#include <thread>

namespace Orvik::Tests
{
namespace
{

constexpr std::chrono::milliseconds s_pause{5};

template <typename Condition>
bool WaitUntil(std::chrono::milliseconds limit, const Condition& condition)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(s_pause);
    }
    return true;
}

constexpr std::uint32_t s_bright = 90;

/// No channel of the dimmed picture is that bright. The crosshair's weakest end adds 0.4 of white to it; the purple of
/// the selection's outline, which may lie over the crosshair, is as bright in red and blue.
bool IsLinePixel(std::uint32_t pixel)
{
    return (pixel & 0xFF) > s_bright && (pixel >> 16 & 0xFF) > s_bright;
}

bool IsWhitePixel(std::uint32_t pixel)
{
    return IsLinePixel(pixel) && (pixel >> 8 & 0xFF) > s_bright;
}

/// Labels may cover a part of a line.
bool IsLine(const Picture& strip)
{
    const auto count = std::count_if(strip.pixels.begin(), strip.pixels.end(), IsLinePixel);
    return static_cast<std::size_t>(count) * 10 >= strip.pixels.size() * 9;
}

/// Whether a line goes through the strip.
bool IsCrossed(const Picture& strip)
{
    return std::any_of(strip.pixels.begin(), strip.pixels.end(), IsWhitePixel);
}

/// A window that goes while it is looked at isn't this watcher's error.
int IgnoreError(::Display* /*display*/, XErrorEvent* /*error*/)
{
    return 0;
}

} // namespace

OverlayWatcher::OverlayWatcher(const std::string& displayName) : OverlayWatcher(displayName, Area{})
{
    m_monitor = {0, 0, m_screen.GetWidth(), m_screen.GetHeight()};
}

OverlayWatcher::OverlayWatcher(const std::string& displayName, const Area& monitor)
    : m_session(IsCompositorName(displayName) ? nullptr : std::make_unique<XSession>(displayName)),
      m_screen(displayName),
      m_monitor(monitor)
{
    XSetErrorHandler(&IgnoreError);
}

OverlayWatcher::OverlayWatcher(const std::string& displayName, Picture ground) : OverlayWatcher(displayName)
{
    m_ground = std::move(ground);
}

OverlayWatcher::~OverlayWatcher() = default;

OverlayWatcher::State OverlayWatcher::GetState() const
{
    if (m_ground)
        return m_screen.CaptureAll() == *m_ground ? State::Missing : State::Visible;
    State state = State::Missing;
    static_cast<void>(FindWindow(state));
    return state;
}

unsigned long OverlayWatcher::FindWindow(State& state) const
{
    state = State::Missing;
    ::Window root = 0;
    ::Window parent = 0;
    ::Window* children = nullptr;
    unsigned count = 0;
    if (XQueryTree(m_session->GetDisplay(), m_session->GetRoot(), &root, &parent, &children, &count) == 0)
        return 0;
    ::Window window = 0;
    for (const ::Window child : std::span(children, count))
    {
        XWindowAttributes attributes = {};
        if (XGetWindowAttributes(m_session->GetDisplay(), child, &attributes) == 0)
            continue;
        if (attributes.x == m_monitor.x && attributes.y == m_monitor.y - 1 && attributes.width == m_monitor.width &&
            attributes.height == m_monitor.height + 1)
        {
            state = attributes.map_state == IsViewable ? State::Visible : State::Hidden;
            window = child;
        }
    }
    if (children != nullptr)
        XFree(children);
    return window;
}

bool OverlayWatcher::WaitFor(State state, std::chrono::milliseconds limit) const
{
    return WaitUntil(limit, [&] { return GetState() == state; });
}

bool OverlayWatcher::WaitForWindow(std::chrono::milliseconds limit) const
{
    return WaitUntil(limit, [&] { return GetState() != State::Missing; });
}

bool OverlayWatcher::WaitForCrosshair(Position cursor, std::chrono::milliseconds limit) const
{
    return WaitUntil(limit, [&] { return HasCrosshair(cursor); });
}

std::optional<Position> OverlayWatcher::FindCrosshair() const
{
    const auto [left, top, width, height] = GetVisiblePart();
    const Picture all = m_screen.Capture({left, top, width, height});
    Position place = {-1, -1};
    for (int x = 1; x < width && place.x < 0; ++x)
        if (IsLine(all.Crop({x, 0, 1, height})))
            place.x = left + x - 1;
    for (int y = 1; y < height && place.y < 0; ++y)
        if (IsLine(all.Crop({0, y, width, 1})))
            place.y = top + y - 1;
    return place.x < 0 || place.y < 0 ? std::nullopt : std::optional(place);
}

void OverlayWatcher::AskToClose() const
{
    State state = State::Missing;
    XEvent request = {};
    request.xclient.type = ClientMessage;
    request.xclient.window = FindWindow(state);
    request.xclient.message_type = XInternAtom(m_session->GetDisplay(), "WM_PROTOCOLS", False);
    request.xclient.format = 32;
    request.xclient.data.l[0] = static_cast<long>(XInternAtom(m_session->GetDisplay(), "WM_DELETE_WINDOW", False));
    XSendEvent(m_session->GetDisplay(), request.xclient.window, False, NoEventMask, &request);
    m_session->Synchronize();
}

unsigned int OverlayWatcher::CountServerResources() const
{
    State state = State::Missing;
    return Tests::CountServerResources(*m_session, FindWindow(state));
}

Area OverlayWatcher::GetVisiblePart() const
{
    const int left = std::max(m_monitor.x, 0);
    const int top = std::max(m_monitor.y, 0);
    const int right = std::min(m_monitor.x + m_monitor.width, m_screen.GetWidth());
    const int bottom = std::min(m_monitor.y + m_monitor.height, m_screen.GetHeight());
    return {left, top, right - left, bottom - top};
}

// GNOME lights the whole screen up for a moment when a picture of it is taken.
bool OverlayWatcher::IsBright() const
{
    const auto [left, top, width, height] = GetVisiblePart();
    constexpr int columns = 8;
    for (int column = 0; column < columns; ++column)
        if (!IsLine(m_screen.Capture({left + column * width / columns, top, 1, height})))
            return false;
    return true;
}

bool OverlayWatcher::HasCrosshair(Position cursor) const
{
    if (!m_ground && GetState() != State::Visible)
        return false;
    const auto [left, top, width, height] = GetVisiblePart();
    const bool hasColumn = cursor.x + 1 < left + width ? IsLine(m_screen.Capture({cursor.x + 1, top, 1, height}))
                                                       : !IsCrossed(m_screen.Capture({left, top, width, 1}));
    const bool hasRow = cursor.y + 1 < top + height ? IsLine(m_screen.Capture({left, cursor.y + 1, width, 1}))
                                                    : !IsCrossed(m_screen.Capture({left, top, 1, height}));
    return hasColumn && hasRow && !IsBright();
}

} // namespace Orvik::Tests
