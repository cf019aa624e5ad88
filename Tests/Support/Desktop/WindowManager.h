#pragma once

#include "Tests/Support/Desktop/ChildProcess.h"

#include <string>

namespace Orvik::Tests
{

/// A window manager (openbox) on an X server. It runs when the constructor returns.
class WindowManager
{
public:
    explicit WindowManager(const std::string& displayName);

private:
    ChildProcess m_process;
};

} // namespace Orvik::Tests
