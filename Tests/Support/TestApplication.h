#pragma once

#include "Core/System/Desktop/DisplayCache.h"
#include "Core/System/Runtime/Application.h"

namespace Orvik::Tests
{

/// An application for units that need one: no program, and Systems on request.
class TestApplication : public System::Runtime::Application
{
public:
    TestApplication() : Application(L"TestApplication") {}

    using Application::m_configCache;
    using Application::m_displaySystem;
    using Application::m_logSystem;
    using Application::m_systems;
    using Application::m_threadManager;

    /// Creates the display system from the null desktop's list of displays.
    void CreateDisplayCache();
};

} // namespace Orvik::Tests
