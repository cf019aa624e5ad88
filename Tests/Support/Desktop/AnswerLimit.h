#pragma once

// Private to the X11 units of this folder.

#include "Desktops/X11/X11Headers.h"
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace Orvik::Tests
{

/// Ends the wait for a server's answer: after the limit the connection is cut, and calls that wait for an answer on it
/// return, with any result. After that the connection can only be closed. Meanwhile the loss of a server doesn't end
/// the process.
class AnswerLimit
{
public:
    /// The limit holds as long as the object lives.
    AnswerLimit(::Display* display, std::chrono::milliseconds limit);
    ~AnswerLimit();
    AnswerLimit(const AnswerLimit&) = delete;
    AnswerLimit& operator=(const AnswerLimit&) = delete;

    [[nodiscard]] bool HasPassed() const { return m_hasPassed; }

private:
    void Watch(int connection, std::chrono::milliseconds limit);

    XIOErrorHandler m_previousHandler;
    std::mutex m_mutex;
    std::condition_variable m_end;
    bool m_isOver = false;
    std::atomic<bool> m_hasPassed = false;
    std::thread m_thread; // the last member: it uses the others
};

} // namespace Orvik::Tests
