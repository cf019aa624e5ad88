#pragma once

// For tests on X11: an overlay on the virtual display, and what it receives.

#include "Core/System/Desktop/Window.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Tests/Support/Desktop/XClient.h"
#include "Tests/Support/LogRecorder.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

namespace Orvik::Tests
{

class OverlayFixture : public testing::Test
{
protected:
    static constexpr System::Math::Point s_position{100, 50};
    static constexpr System::Desktop::WindowSize s_size{400, 300};

    OverlayFixture() { Listen(m_window); }

    void Listen(System::Desktop::Window& window)
    {
        window.SetEventHandler(
            [this](const System::Desktop::WindowEvent& event)
            {
                m_events.push_back(event);
                return true;
            });
    }

    void CreateAndShow()
    {
        ASSERT_TRUE(m_window.Create());
        m_window.Show(m_window.Lock());
    }

    [[nodiscard]] ::Window GetId() const { return static_cast<::Window>(m_window.GetNativeWindow()); }

    /// Updates until `done` holds, for two seconds at most. The result is whether it does.
    template <typename Condition>
    bool UpdateUntil(Condition done)
    {
        const std::int64_t begin = System::Time::GetMonotonicNanoseconds();
        while (!done() && System::Time::GetMonotonicNanoseconds() - begin < 2'000'000'000)
        {
            m_window.Update();
            System::Time::Sleep(100'000);
        }
        return done();
    }

    /// Updates as often as it takes to see everything that has come.
    void UpdateAll()
    {
        constexpr int enough = 300;
        for (int round = 0; round < enough; ++round)
        {
            m_window.Update();
            if (round % 50 == 0)
                System::Time::Sleep(1'000'000);
        }
    }

    [[nodiscard]] std::size_t Count(System::Desktop::WindowEventType type) const
    {
        return static_cast<std::size_t>(std::count_if(m_events.begin(), m_events.end(),
                                                      [type](const System::Desktop::WindowEvent& event)
                                                      { return event.type == type; }));
    }

    /// The events of one kind.
    [[nodiscard]] std::vector<System::Desktop::WindowEvent> Get(System::Desktop::WindowEventType type) const
    {
        std::vector<System::Desktop::WindowEvent> events;
        std::copy_if(m_events.begin(), m_events.end(), std::back_inserter(events),
                     [type](const System::Desktop::WindowEvent& event) { return event.type == type; });
        return events;
    }

    LogRecorder m_log;
    XClient m_user;
    std::vector<System::Desktop::WindowEvent> m_events;
    System::Desktop::Window m_window{nullptr, "Orvik::Test", s_position, s_size, System::Desktop::WindowType::Overlay};
};

} // namespace Orvik::Tests
