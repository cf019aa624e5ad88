#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace Orvik::Tests
{

class XSession;

/// Another program that does something to its windows again and again, from a thread of its own, while it lives.
class RestlessWindows
{
public:
    /// A window on top of the others that moves 500 times a second.
    [[nodiscard]] static RestlessWindows Move(const std::string& displayName);
    /// Ten windows a second that open on top of the others and close.
    [[nodiscard]] static RestlessWindows OpenAndClose(const std::string& displayName);
    ~RestlessWindows();
    RestlessWindows(const RestlessWindows&) = delete;
    RestlessWindows& operator=(const RestlessWindows&) = delete;

private:
    explicit RestlessWindows(std::function<void(std::atomic<bool>&)> work);

    std::atomic<bool> m_isEnding = false;
    std::thread m_thread;
};

} // namespace Orvik::Tests
