// The whole program on the null desktop: real options, Systems, tool and files; input and screen are values.
#pragma once

#include "Application/Application.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/GLRecorder.h"
#include "Tests/Support/NullDesktop.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace Orvik::SnipBench
{

[[nodiscard]] inline std::string MakeCodeObject(const std::string& name, int code)
{
    return "{\n    \"name\": \"" + name + "\",\n    \"code\": " + std::to_string(code) + "\n}\n";
}

[[nodiscard]] inline std::vector<std::filesystem::path> ListFiles(const std::filesystem::path& directory)
{
    std::vector<std::filesystem::path> files;
    if (std::filesystem::exists(directory))
        std::copy(std::filesystem::directory_iterator(directory), {}, std::back_inserter(files));
    return files;
}

class ApplicationTest : public testing::Test
{
protected:
    ApplicationTest()
    {
        Tests::GLRecorder::GetInstance().Reset();
        desktop.Reset();
        AddDisplay(0, 0, 200, 100);
        desktop.screenPixel = [](std::int32_t x, std::int32_t y)
        { return static_cast<std::uint32_t>(x & 0xFF) | static_cast<std::uint32_t>(y & 0xFF) << 8; };
        commandLine.arguments = {"SnipBench"};
    }

    void AddDisplay(std::int16_t x, std::int16_t y, std::uint16_t width, std::uint16_t height)
    {
        System::Device::Display::DisplayDescriptor display;
        display.name = "Null";
        display.x = x;
        display.y = y;
        display.width = width;
        display.height = height;
        desktop.displays.push_back(display);
    }

    void AddArguments(const std::vector<std::string>& arguments)
    {
        commandLine.arguments.insert(commandLine.arguments.end(), arguments.begin(), arguments.end());
    }

    void UseOutput() { AddArguments({"-o", output.GetPath().string()}); }

    void Move(System::Math::Point position)
    {
        desktop.messages.emplace_back(
            [this, position](System::Desktop::Window& window)
            {
                desktop.cursorPosition = position;
                window.DeliverMouseMove(position.x, position.y);
            });
    }

    void Button(std::uint8_t button, bool pressed)
    {
        desktop.messages.emplace_back([button, pressed](System::Desktop::Window& window)
                                      { window.DeliverMouseButton(button, pressed); });
    }

    void Key(System::Desktop::KeyCode key, bool pressed)
    {
        desktop.messages.emplace_back([key, pressed](System::Desktop::Window& window)
                                      { window.DeliverKey(key, pressed); });
    }

    void Drag(System::Math::Point from, System::Math::Point to)
    {
        Move(from);
        Button(1, true);
        Move(to);
        Button(1, false);
    }

    void Escape()
    {
        Key(System::Desktop::KeyCode::Escape, true);
        Key(System::Desktop::KeyCode::Escape, false);
    }

    /// Runs the program to its end and keeps what it printed.
    std::int32_t Run(bool hasCommandLine = true)
    {
        System::Runtime::ApplicationParameters parameters;
        parameters.terminateOtherInstances = false;
        parameters.commandLine = hasCommandLine ? &commandLine : nullptr;
        Application application;
        running = &application;
        testing::internal::CaptureStdout();
        System::Runtime::Application::Run(parameters);
        printed = testing::internal::GetCapturedStdout();
        hasWaited = true; // the run may be over without
        if (stopper.joinable())
            stopper.join(); // before the application, which it asks to end, is gone
        running = nullptr;
        return application.m_returnCode;
    }

    /// Asks the run to end, from another thread, so long after it first waits for a message.
    void StopOnceIdle(std::chrono::milliseconds pause)
    {
        desktop.onWait = [this] { hasWaited = true; };
        stopper = std::thread(
            [this, pause]
            {
                while (!hasWaited)
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                std::this_thread::sleep_for(pause);
                EXPECT_NE(running.load(), nullptr) << "the run goes on";
                System::Runtime::Application::RequestShutdown();
            });
    }

    /// The text of the one log file, without the second character of line ends that Windows has.
    [[nodiscard]] std::string ReadLog() const
    {
        const auto files = ListFiles(home.GetPath() / ".orvik" / "Logs");
        std::string log = files.size() == 1 ? Tests::ReadText(files[0]) : std::string();
        std::erase(log, '\r');
        return log;
    }

    Tests::NullDesktop& desktop = Tests::NullDesktop::GetInstance();
    Tests::TemporaryDirectory home;
    Tests::EnvironmentVariable homeVariable{Tests::HomeVariable, home.GetPath().string().c_str()};
    Tests::TemporaryDirectory output;
    System::Runtime::CommandLine commandLine;
    std::string printed;
    std::atomic<Application*> running = nullptr;
    std::atomic<bool> hasWaited = false;
    std::thread stopper; ///< joined by `Run`
};

} // namespace Orvik::SnipBench
