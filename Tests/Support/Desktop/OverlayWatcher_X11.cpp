#include "Tests/Support/Desktop/OverlayWatcher.h"

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

/// White over the dimmed test picture: no channel of that is above 50, and the line's weakest end adds 0.4 of white.
bool IsLinePixel(std::uint32_t pixel)
{
    return (pixel & 0xFF) > 90 && (pixel >> 8 & 0xFF) > 90 && (pixel >> 16 & 0xFF) > 90;
}

/// Labels and the selection's outline may cover a part of a line.
bool IsLine(const Picture& strip)
{
    const auto count = std::count_if(strip.pixels.begin(), strip.pixels.end(), IsLinePixel);
    return static_cast<std::size_t>(count) * 10 >= strip.pixels.size() * 9;
}

/// A window that goes while it is looked at isn't this watcher's error.
int IgnoreError(::Display* /*display*/, XErrorEvent* /*error*/)
{
    return 0;
}

} // namespace

OverlayWatcher::OverlayWatcher(const std::string& displayName)
    : m_session(std::make_unique<XSession>(displayName)), m_screen(displayName)
{
    XSetErrorHandler(&IgnoreError);
}

OverlayWatcher::~OverlayWatcher() = default;

OverlayWatcher::State OverlayWatcher::GetState() const
{
    ::Window root = 0;
    ::Window parent = 0;
    ::Window* children = nullptr;
    unsigned count = 0;
    if (XQueryTree(m_session->GetDisplay(), m_session->GetRoot(), &root, &parent, &children, &count) == 0)
        return State::Missing;
    State state = State::Missing;
    for (const ::Window child : std::span(children, count))
    {
        XWindowAttributes attributes = {};
        if (XGetWindowAttributes(m_session->GetDisplay(), child, &attributes) == 0)
            continue;
        if (attributes.override_redirect == True && attributes.x == 0 && attributes.y == -1 &&
            attributes.width == m_session->GetWidth() && attributes.height == m_session->GetHeight() + 1)
            state = attributes.map_state == IsViewable ? State::Visible : State::Hidden;
    }
    if (children != nullptr)
        XFree(children);
    return state;
}

bool OverlayWatcher::WaitFor(State state, std::chrono::milliseconds limit) const
{
    return WaitUntil(limit, [&] { return GetState() == state; });
}

bool OverlayWatcher::WaitForCrosshair(Position cursor, std::chrono::milliseconds limit) const
{
    return WaitUntil(limit, [&] { return HasCrosshair(cursor); });
}

bool OverlayWatcher::HasCrosshair(Position cursor) const
{
    const int width = m_screen.GetWidth();
    const int height = m_screen.GetHeight();
    if (GetState() != State::Visible)
        return false;
    if (cursor.x + 1 < width && !IsLine(m_screen.Capture({cursor.x + 1, 0, 1, height})))
        return false;
    return cursor.y + 1 >= height || IsLine(m_screen.Capture({0, cursor.y + 1, width, 1}));
}

} // namespace Orvik::Tests
