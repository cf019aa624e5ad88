#pragma once

// For tests on the desktop of Windows: a window, and what it receives.

#include "Core/System/Desktop/Window.h"
#include "Systems/Windows/WindowsHeaders.h"

#include <gtest/gtest.h>
#include <vector>

namespace Orvik::Tests
{

class WindowFixture : public testing::Test
{
protected:
    static constexpr const char* s_name = "Orvik::WindowTest";
    static constexpr System::Math::Point s_position{100, 50};
    static constexpr System::Desktop::WindowSize s_size{400, 300};

    WindowFixture() { Listen(m_window); }

    void Listen(System::Desktop::Window& window)
    {
        window.SetEventHandler(
            [this](const System::Desktop::WindowEvent& event)
            {
                m_events.push_back(event);
                return m_handles;
            });
    }

    [[nodiscard]] static HWND GetHwnd(const System::Desktop::Window& window)
    {
        return reinterpret_cast<HWND>(window.GetNativeWindow());
    }

    /// Sends the window a message, and gives back what its procedure answered.
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        m_events.clear();
        return SendMessageW(GetHwnd(m_window), message, wParam, lParam);
    }

    std::vector<System::Desktop::WindowEvent> m_events;
    bool m_handles = true; ///< what the handler answers
    System::Desktop::Window m_window{nullptr, s_name, s_position, s_size, System::Desktop::WindowType::Overlay};
};

} // namespace Orvik::Tests
