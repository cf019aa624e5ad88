#pragma once

#include "Tests/Support/Desktop/ChildProcess.h"

#include <string>

namespace Orvik::Tests
{

/// A compositing manager (xcompmgr) on an X server: it composes the screen from the windows' own pictures. It runs when
/// the constructor returns; from then on the screen shows changes with a delay.
class CompositingManager
{
public:
    explicit CompositingManager(const std::string& displayName);

    [[nodiscard]] bool IsRunning() const { return m_process.IsRunning(); }

private:
    ChildProcess m_process;
};

} // namespace Orvik::Tests
