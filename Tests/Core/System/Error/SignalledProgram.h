#pragma once

#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Log/Streams.h"
#include "Core/System/Runtime/Application.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>
#include <thread>
#include <utility>

namespace Orvik::System::Error
{

/// Prints what is logged, so that the parent sees it.
class LogPrinter final : public Log::IMessageReceiver
{
public:
    LogPrinter() { Log::SetReceiver(this); }
    ~LogPrinter() override { Log::SetReceiver(nullptr); }
    [[nodiscard]] bool AcceptsStream(std::uint32_t /*stream*/) const override { return true; }
    void Receive(std::uint32_t stream, Log::MessageTypeID severity, const std::string& text) override
    {
        std::cout << Log::GetStreamName(stream) << " " << Log::messageTypeIDNames[static_cast<std::size_t>(severity)]
                  << ": " << text << std::endl;
    }
};

/// Ends its run when it is asked to, if it listens.
class Program final : public Runtime::Application
{
public:
    explicit Program(
        bool listens, std::function<void()> finish = [] {})
        : Application(L"Program"), m_listens(listens), m_finish(std::move(finish))
    {
        ErrorHandling::GetInstance().SetApplication(this);
    }
    ~Program() override { ErrorHandling::GetInstance().SetApplication(nullptr); }
    void OnShutdownRequested() override
    {
        std::cout << "asked" << std::endl;
        m_isAsked = m_listens;
    }
    void Work()
    {
        while (!m_isAsked)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        m_finish();
        std::atomic_ref(m_returnCode).store(5); // the signal thread looks for it
    }

private:
    bool m_listens;
    std::function<void()> m_finish; ///< what is left to do once it has been asked
    std::atomic<bool> m_isAsked = false;
};

/// A run in a process of its own, with the log printed. The process ends here, and its objects stay: a request that
/// comes as late as that finds a run that is over.
inline int RunProgram(
    bool listens, const std::function<void()>& prepare = [] {}, std::function<void()> finish = [] {})
{
    LogPrinter printer;
    ErrorHandling::GetInstance();
    prepare();
    Program program(listens, std::move(finish));
    std::cout << "running" << std::endl;
    program.Work();
    std::_Exit(program.m_returnCode);
}

/// What is logged last before a run is aborted.
inline constexpr const char* s_abortion = "System Info: Shutting down due to a forced abortion or error.\n";

} // namespace Orvik::System::Error
