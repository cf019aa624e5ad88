#include "Tests/Support/NullWindow.h"

#include "Core/System/Log/LogSite.h"
#include "Tests/Support/NullDesktop.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace Orvik::Tests
{
namespace
{

namespace Log = System::Log;

void Remember(const char* call)
{
    NullDesktop::GetInstance().windowCalls.emplace_back(call);
}

} // namespace

bool NullWindow::Register(const char* /*className*/)
{
    Remember("RegisterClass");
    return NullDesktop::GetInstance().windowRegisters;
}

void NullWindow::Unregister(const char* /*className*/)
{
    Remember("UnregisterClass");
}

Desktops::NativeWindow NullWindow::Create(const Desktops::WindowDescription& /*description*/)
{
    Remember("Create");
    if (!NullDesktop::GetInstance().windowCreates)
    {
        Log::Write(Log::s_system, Log::MessageTypeID::Error, "Failed to create window: ", "Refused (0)");
        return Desktops::NativeWindow::None;
    }
    m_owner.DeliverPlain(System::Desktop::WindowEventType::Created);
    constexpr auto created = Desktops::NativeWindow{1};
    if (m_owner.OnNativeWindowCreated(created))
        return created;
    Remember("Destroy");
    return Desktops::NativeWindow::None;
}

void NullWindow::Destroy()
{
    Remember("Destroy");
}

void NullWindow::Show()
{
    Remember("Show");
}

void NullWindow::Hide()
{
    Remember("Hide");
}

// Not remembered: a frame loop pumps without end.
void NullWindow::Pump()
{
    auto& messages = NullDesktop::GetInstance().messages;
    if (messages.empty())
        return;
    const std::function<void(System::Desktop::Window&)> message = std::move(messages.front());
    messages.pop_front();
    message(m_owner);
}

bool NullWindow::HasMessage()
{
    return !NullDesktop::GetInstance().messages.empty();
}

// Messages come from the thread that waits, or not at all: a wait without an end is a short one.
void NullWindow::WaitForMessage(std::int64_t nanoseconds, System::Threads::WakeSignal& wake)
{
    constexpr std::int64_t shortWait = 1'000'000;
    ++NullDesktop::GetInstance().waits;
    if (const auto& onWait = NullDesktop::GetInstance().onWait)
        onWait();
    wake.Wait(nanoseconds < 0 ? shortWait : std::min(nanoseconds, shortWait));
}

void NullWindow::SetTitle(const std::string& title)
{
    NullDesktop::GetInstance().windowTitle = title;
}

// Counted alone: who rests does it again and again.
void NullWindow::AnswerOthers()
{
    ++NullDesktop::GetInstance().answers;
}

void NullWindow::SetClickThrough(bool enabled)
{
    Remember(enabled ? "SetClickThrough(true)" : "SetClickThrough(false)");
}

void NullWindow::BringToFront()
{
    Remember("BringToFront");
}

} // namespace Orvik::Tests
