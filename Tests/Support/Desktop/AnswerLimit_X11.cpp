#include "Tests/Support/Desktop/AnswerLimit.h"

#include <sys/socket.h>

namespace Orvik::Tests
{
namespace
{

/// Xlib's own would end the process.
int IgnoreLoss(::Display* /*display*/)
{
    return 0;
}

void StayInProcess(::Display* /*display*/, void* /*data*/)
{
}

} // namespace

AnswerLimit::AnswerLimit(::Display* display, std::chrono::milliseconds limit)
    : m_previousHandler(XSetIOErrorHandler(&IgnoreLoss))
{
    XSetIOErrorExitHandler(display, &StayInProcess, nullptr);
    m_thread = std::thread(&AnswerLimit::Watch, this, ConnectionNumber(display), limit);
}

AnswerLimit::~AnswerLimit()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isOver = true;
    }
    m_end.notify_one();
    m_thread.join();
    XSetIOErrorHandler(m_previousHandler);
}

void AnswerLimit::Watch(int connection, std::chrono::milliseconds limit)
{
    std::unique_lock lock(m_mutex);
    if (m_end.wait_for(lock, limit, [this] { return m_isOver; }))
        return;
    m_hasPassed = true;
    shutdown(connection, SHUT_RDWR);
}

} // namespace Orvik::Tests
