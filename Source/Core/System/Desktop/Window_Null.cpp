#include "Core/System/Desktop/Window.h"
#include "Core/System/Error/Assertion.h"
#include "Core/System/Log/Site/LogSite.h"
#include "Core/System/Platform/NullDesktop.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace Orvik::System::Desktop
{
namespace
{

using Platform::NullDesktop;

constexpr Log::Context s_context{Log::StreamID::System};

void Remember(const char* call)
{
    NullDesktop::GetInstance().windowCalls.emplace_back(call);
}

bool IsWindowType(WindowType type)
{
    switch (type)
    {
    case WindowType::Overlapped:
    case WindowType::Popup:
    case WindowType::ToolPopup:
    case WindowType::Overlay:
    case WindowType::MessageOnly:
        return true;
    }
    return false;
}

} // namespace

struct Window::Native
{
};

void Window::NativeDeleter::operator()(Native* native) const noexcept
{
    delete native;
}

bool Window::RegisterClassPlatform()
{
    Remember("RegisterClass");
    return NullDesktop::GetInstance().windowRegisters;
}

void Window::UnregisterClassPlatform()
{
    Remember("UnregisterClass");
}

bool Window::CreatePlatform()
{
    if (!IsWindowType(m_type))
    {
        ORVIK_ASSERT(false, "Illegal switch case.");
        return false;
    }
    Remember("Create");
    if (!NullDesktop::GetInstance().windowCreates)
    {
        Log::Write(s_context, Log::MessageTypeID::Error, "Failed to create window: ", "Refused (0)");
        return false;
    }
    DeliverPlain(WindowEventType::Created);
    constexpr auto created = NativeWindow{1};
    if (!OnNativeWindowCreated(created))
    {
        Remember("Destroy");
        return false;
    }
    m_handle = created;
    return true;
}

void Window::DestroyPlatform()
{
    Remember("Destroy");
}

void Window::ShowPlatform()
{
    Remember("Show");
}

void Window::HidePlatform()
{
    Remember("Hide");
}

// Not remembered: a frame loop pumps without end.
void Window::PumpMessagePlatform()
{
    auto& messages = NullDesktop::GetInstance().messages;
    if (messages.empty())
        return;
    const std::function<void(Window&)> message = std::move(messages.front());
    messages.pop_front();
    message(*this);
}

bool Window::HasMessagePlatform()
{
    return !NullDesktop::GetInstance().messages.empty();
}

// Messages come from the thread that waits, or not at all: a wait without an end is a short one.
void Window::WaitForMessagePlatform(std::int64_t nanoseconds, Threads::WakeSignal& wake)
{
    constexpr std::int64_t shortWait = 1'000'000;
    ++NullDesktop::GetInstance().waits;
    wake.Wait(nanoseconds < 0 ? shortWait : std::min(nanoseconds, shortWait));
}

void Window::SetTitlePlatform(const std::string& title)
{
    NullDesktop::GetInstance().windowTitle = title;
}

// Counted alone: who rests does it again and again.
void Window::AnswerOthersPlatform()
{
    ++NullDesktop::GetInstance().answers;
}

void Window::SetClickThroughPlatform(bool enabled)
{
    Remember(enabled ? "SetClickThrough(true)" : "SetClickThrough(false)");
}

void Window::BringToFrontPlatform()
{
    Remember("BringToFront");
}

} // namespace Orvik::System::Desktop
