#pragma once

#include "Tests/Support/Desktop/ChildProcess.h"

#include <string>

namespace Orvik::Tests
{

/// A compositing manager (xcompmgr) on an X server: it puts the screen together from the windows' own pictures. Up when
/// the constructor returns; the screen follows what happens with a delay from then on.
class CompositingManager
{
public:
    explicit CompositingManager(const std::string& displayName);

    [[nodiscard]] bool IsRunning() const { return m_process.IsRunning(); }

private:
    ChildProcess m_process;
};

} // namespace Orvik::Tests
