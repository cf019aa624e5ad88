#pragma once

#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Runtime/Application.h"
#include "Core/System/Runtime/SystemCreation.h"
#include "Core/System/Threads/ThreadManager.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// A program that notes down what the frame does with it, and does what a test asks of it.
class FrameApplication : public System::Runtime::Application
{
public:
    FrameApplication() : Application(L"FrameApplication") {}

    using Application::CreateAndInitialize;
    using Application::m_commandLine;
    using Application::m_commandRegistry;
    using Application::m_configCache;
    using Application::m_context;
    using Application::m_displaySystem;
    using Application::m_extension;
    using Application::m_logSystem;
    using Application::m_mainLoopSystem;
    using Application::m_mainThread;
    using Application::m_systems;
    using Application::m_threadManager;
    using Application::SystemEntry;

    void Main(const System::Runtime::ApplicationParameters& parameters) override
    {
        calls.emplace_back("Main");
        lastParameters = &parameters;
        if (onMain)
            onMain();
    }
    void OnConfigurationReady(Application& sender, const std::filesystem::path* path) override
    {
        EXPECT_EQ(&sender, this);
        calls.emplace_back("OnConfigurationReady");
        rootPath = *path;
    }
    void OnPreSystemInitialization(Application& /*sender*/, PreSystemInitializationEvent& event) override
    {
        calls.push_back("before " + std::string(event.system->GetName()));
        if (onPreSystemInitialization)
            onPreSystemInitialization(*event.system);
    }
    void OnPostSystemInitialization(Application& sender, PostSystemInitializationEvent& event) override
    {
        calls.push_back("after " + std::string(event.system->GetName()));
        if (keepsBase)
            Application::OnPostSystemInitialization(sender, event);
    }

    std::function<void()> onMain;
    std::function<void(System::Runtime::ISystem&)> onPreSystemInitialization;
    bool keepsBase = false;
    std::vector<std::string> calls;
    std::filesystem::path rootPath;
    const System::Runtime::ApplicationParameters* lastParameters = nullptr;
};

/// Parameters that leave other test processes alone.
[[nodiscard]] inline System::Runtime::ApplicationParameters
MakeParameters(System::Runtime::CommandLine* commandLine = nullptr)
{
    System::Runtime::ApplicationParameters parameters;
    parameters.terminateOtherInstances = false;
    parameters.commandLine = commandLine;
    return parameters;
}

/// A home of its own, for log and report files, and a working directory for reports that come before those.
class StartupTest : public testing::Test
{
protected:
    StartupTest() : m_before(std::filesystem::current_path()) { std::filesystem::current_path(m_home.GetPath()); }
    ~StartupTest() override
    {
        System::Error::ErrorHandling::GetInstance().SetLogger(nullptr);
        std::filesystem::current_path(m_before);
    }

    [[nodiscard]] std::filesystem::path GetLogDirectory() const { return m_home.GetPath() / ".orvik" / "Logs"; }

    /// The frame's part of the start, without the program's.
    void StartFrame(const System::Runtime::ApplicationParameters& parameters = {})
    {
        m_application.Application::Main(parameters);
    }

    TemporaryDirectory m_home;
    EnvironmentVariable m_homeVariable{HomeVariable, m_home.GetPath().string().c_str()};
    std::filesystem::path m_before;
    FrameApplication m_application;
};

} // namespace Orvik::Tests
