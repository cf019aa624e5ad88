#include "Tests/Support/Desktop/RestlessWindows.h"

#include "Tests/Support/Desktop/XSession.h"

#include <chrono>
#include <utility>

namespace Orvik::Tests
{
namespace
{

constexpr int s_side = 100;

Window Open(const XSession& session, int x, int y)
{
    XSetWindowAttributes attributes = {};
    attributes.override_redirect = True;
    const Window window = XCreateWindow(session.GetDisplay(), session.GetRoot(), x, y, s_side, s_side, 0,
                                        CopyFromParent, InputOutput, nullptr, CWOverrideRedirect, &attributes);
    XMapRaised(session.GetDisplay(), window);
    session.Synchronize();
    return window;
}

} // namespace

RestlessWindows::RestlessWindows(std::function<void(std::atomic<bool>&)> work)
    : m_thread([this, work = std::move(work)] { work(m_isEnding); })
{
}

RestlessWindows::~RestlessWindows()
{
    m_isEnding = true;
    m_thread.join();
}

RestlessWindows RestlessWindows::Move(const std::string& displayName)
{
    return RestlessWindows(
        [displayName](const std::atomic<bool>& isEnding)
        {
            const XSession session(displayName);
            const Window window = Open(session, 0, 0);
            auto next = std::chrono::steady_clock::now();
            for (int step = 0; !isEnding; ++step)
            {
                XMoveWindow(session.GetDisplay(), window, step % s_side, s_side);
                session.Synchronize();
                next += std::chrono::milliseconds(2);
                std::this_thread::sleep_until(next);
            }
        });
}

RestlessWindows RestlessWindows::OpenAndClose(const std::string& displayName)
{
    return RestlessWindows(
        [displayName](const std::atomic<bool>& isEnding)
        {
            const XSession session(displayName);
            for (int step = 0; !isEnding; ++step)
            {
                const Window window = Open(session, step % 5 * s_side, s_side);
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                XDestroyWindow(session.GetDisplay(), window);
                session.Synchronize();
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
            }
        });
}

} // namespace Orvik::Tests
