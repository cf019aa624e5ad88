// The whole program on a real X server.
#include "Application/Application.h"

#include "Core/System/Runtime/CommandLine.h"
#include "Tests/Support/Desktop/XClient.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <malloc.h>
#include <thread>

namespace Orvik::SnipBench
{
namespace
{

/// The bytes that this process has asked for, however far apart they lie. 0 where the sanitizer has its own memory.
std::size_t GetAllocatedBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

class ApplicationX11 : public testing::Test
{
protected:
    /// Runs the program, with a person at the desktop on a thread of its own, after which the run is asked to end. What
    /// fails there is reported here: the program's output is caught meanwhile.
    std::int32_t RunWith(const std::function<void(Tests::XClient&)>& user)
    {
        Tests::XClient desktop; // before the program, so that a server that doesn't answer fails the test
        System::Runtime::CommandLine commandLine;
        commandLine.arguments = {"SnipBench", "-o", m_output.GetPath().string()};
        System::Runtime::ApplicationParameters parameters;
        parameters.terminateOtherInstances = false;
        parameters.commandLine = &commandLine;
        Application application;
        std::thread other(
            [&]
            {
                user(desktop);
                System::Runtime::Application::RequestShutdown();
            });
        testing::internal::CaptureStdout();
        System::Runtime::Application::Run(parameters);
        m_printed = testing::internal::GetCapturedStdout();
        other.join();
        return application.m_returnCode;
    }

    /// The overlay, or `None`: it is one pixel taller than the screen.
    [[nodiscard]] static ::Window FindOverlay(Tests::XClient& user)
    {
        ::Window found = None;
        XWindowAttributes root = {};
        XGetWindowAttributes(user.GetDisplay(), user.GetRoot(), &root);
        for (const ::Window window : user.GetTopWindows())
        {
            XWindowAttributes attributes = {};
            if (XGetWindowAttributes(user.GetDisplay(), window, &attributes) != 0 && attributes.width == root.width &&
                attributes.height == root.height + 1)
                found = window;
        }
        return found;
    }

    /// Waits for that, for ten seconds at most.
    static bool WaitUntil(const std::function<bool()>& condition)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!condition() && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return condition();
    }

    Tests::TemporaryDirectory m_home;
    Tests::EnvironmentVariable m_homeVariable{Tests::HomeVariable, m_home.GetPath().string().c_str()};
    Tests::TemporaryDirectory m_output;
    std::string m_printed;
};

TEST_F(ApplicationX11, ARunWhoseWindowTheSystemHasClosedAsksForNoMemory)
{
    bool isClosed = false;
    std::size_t before = 0;
    std::size_t after = 0;
    const std::int32_t code = RunWith(
        [&](Tests::XClient& user)
        {
            if (!WaitUntil([&] { return FindOverlay(user) != None; }))
                return;
            const ::Window overlay = FindOverlay(user);
            user.SendClientMessage(overlay, overlay, "WM_PROTOCOLS",
                                   static_cast<long>(user.GetAtom("WM_DELETE_WINDOW")), NoEventMask);
            isClosed = WaitUntil([&] { return FindOverlay(user) == None; });
            // What closing itself has left to do is done by then.
            std::this_thread::sleep_for(std::chrono::milliseconds(500));
            before = GetAllocatedBytes();
            std::this_thread::sleep_for(std::chrono::seconds(2));
            after = GetAllocatedBytes();
        });
    EXPECT_TRUE(isClosed);
    EXPECT_LE(after, before + 2000);
    EXPECT_EQ(code, 0);
    EXPECT_NE(m_printed.find("\"Success\""), std::string::npos) << m_printed;
}

} // namespace
} // namespace Orvik::SnipBench
