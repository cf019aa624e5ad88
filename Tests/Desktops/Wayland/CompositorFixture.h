#pragma once

// For tests on Wayland: a compositor of the test's own, and the desktop on it.

#include "Core/System/Desktop/PixelSurface.h"
#include "Core/System/Desktop/Window.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Desktops/Wayland/WaylandConnection.h"
#include "Desktops/Wayland/WaylandDesktop.h"
#include "Tests/Support/Desktop/NestedCompositor.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/NullDesktop.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Orvik::Tests
{

/// A compositor that the process's environment names, and the desktop on it, which is the process's while it lives.
class CompositorDesktop
{
public:
    explicit CompositorDesktop(const CompositorOptions& options) : m_compositor(std::in_place, options)
    {
        for (const auto& [name, value] : m_compositor->GetEnvironment())
            m_environment.push_back(std::make_unique<EnvironmentVariable>(name.c_str(), value.c_str()));
        // Its socket is there before it answers, and on a busy machine that takes longer than the program waits.
        constexpr int mostTries = 60;
        std::string failure;
        for (int count = 0; Desktops::Wayland::WaylandConnection::Open(failure) == nullptr; ++count)
        {
            if (count == mostTries)
                throw std::runtime_error(failure);
        }
        Desktops::SetDesktop(m_desktop);
    }
    ~CompositorDesktop() { Desktops::SetDesktop(NullDesktop::GetInstance()); }
    CompositorDesktop(const CompositorDesktop&) = delete;
    CompositorDesktop& operator=(const CompositorDesktop&) = delete;

    [[nodiscard]] NestedCompositor& GetCompositor() { return *m_compositor; }
    /// Ends the compositor, and leaves the desktop as it then is.
    void EndCompositor() { m_compositor.reset(); }
    [[nodiscard]] Desktops::Wayland::WaylandDesktop& Get() { return m_desktop; }

    /// Has sway carry a command out. False if it refuses.
    [[nodiscard]] bool Command(const std::string& command) const { return m_compositor->Command(command); }

    /// The display of that number, from 0.
    [[nodiscard]] System::Device::Display::DisplayDescriptor GetDisplay(std::size_t index)
    {
        return m_desktop.ListDisplays().displays.at(index);
    }

    /// Versions of a compositor list the same outputs in different orders. Throws if there is none of this name.
    [[nodiscard]] System::Device::Display::DisplayDescriptor GetDisplay(std::string_view name)
    {
        const auto displays = m_desktop.ListDisplays().displays;
        for (const System::Device::Display::DisplayDescriptor& display : displays)
            if (display.name == name)
                return display;
        throw std::out_of_range("There is no output " + std::string(name));
    }

private:
    std::optional<NestedCompositor> m_compositor;
    std::vector<std::unique_ptr<EnvironmentVariable>> m_environment;
    Desktops::Wayland::WaylandDesktop m_desktop;
};

/// An overlay over a display, as the program makes it, and what it receives.
class TestOverlay
{
public:
    explicit TestOverlay(const System::Device::Display::DisplayDescriptor& display)
        : m_width(display.width),
          m_height(display.height),
          m_window(nullptr, "Orvik::Test", {display.x, display.y - 1}, {display.width, display.height + 1U},
                   System::Desktop::WindowType::Overlay)
    {
        m_window.SetSurfaceKind(System::Desktop::SurfaceKind::Pixels);
        m_window.SetEventHandler(
            [this](const System::Desktop::WindowEvent& event)
            {
                m_events.push_back(event);
                return true;
            });
    }

    [[nodiscard]] bool Open()
    {
        if (!m_window.Create() || !m_pixels.Create(m_window.GetNativeWindow(), m_width, m_height))
            return false;
        m_window.Show(m_window.Lock());
        m_window.SetClickThrough(false);
        return true;
    }

    /// Shows these pixels, in rows from the top; only the area is said to have changed.
    [[nodiscard]] bool Draw(const std::vector<std::uint32_t>& pixels, const System::Math::Rectangle& area)
    {
        if (!m_pixels.BeginFrame())
            return false;
        for (std::int32_t row = area.top; row < area.bottom; ++row)
        {
            const auto line = static_cast<std::size_t>(row);
            const auto left = static_cast<std::size_t>(area.left);
            std::copy_n(pixels.begin() + static_cast<std::ptrdiff_t>(line * m_width + left), area.right - area.left,
                        m_pixels.GetPixels() + line * m_pixels.GetStride() + left);
        }
        m_pixels.Present({{area}});
        m_pixels.EndFrame();
        return true;
    }

    [[nodiscard]] System::Math::Rectangle GetArea() const
    {
        return {0, 0, static_cast<std::int32_t>(m_width), static_cast<std::int32_t>(m_height)};
    }

    /// Updates until `done` holds, for some seconds at most. The result is whether it does.
    template <typename Condition>
    bool UpdateUntil(Condition done)
    {
        constexpr std::int64_t limit = 10'000'000'000;
        const std::int64_t begin = System::Time::GetMonotonicNanoseconds();
        while (!done() && System::Time::GetMonotonicNanoseconds() - begin < limit)
        {
            m_window.Update();
            System::Time::Sleep(1'000'000);
        }
        return done();
    }

    /// The events of one kind.
    [[nodiscard]] std::vector<System::Desktop::WindowEvent> Get(System::Desktop::WindowEventType type) const
    {
        std::vector<System::Desktop::WindowEvent> events;
        std::copy_if(m_events.begin(), m_events.end(), std::back_inserter(events),
                     [type](const System::Desktop::WindowEvent& event) { return event.type == type; });
        return events;
    }

    [[nodiscard]] System::Desktop::Window& GetWindow() { return m_window; }
    [[nodiscard]] System::Desktop::PixelSurface& GetPixels() { return m_pixels; }

private:
    std::uint32_t m_width;
    std::uint32_t m_height;
    std::vector<System::Desktop::WindowEvent> m_events;
    System::Desktop::Window m_window;
    System::Desktop::PixelSurface m_pixels;
};

/// Opaque pixels of which each is another colour than its neighbours.
[[nodiscard]] inline std::vector<std::uint32_t> MakeNoise(std::size_t count, unsigned seed)
{
    std::mt19937 generator(seed);
    std::vector<std::uint32_t> pixels(count);
    for (std::uint32_t& pixel : pixels)
        pixel = static_cast<std::uint32_t>(generator()) | 0xFF000000U;
    return pixels;
}

/// What a display shows, in rows from the top, with 255 for alpha. Empty if it can't be captured.
[[nodiscard]] inline std::vector<std::uint32_t> Capture(Desktops::Desktop& desktop,
                                                        const System::Device::Display::DisplayDescriptor& display)
{
    const auto context = desktop.MakeCaptureContext();
    EXPECT_TRUE(context->Initialize({display.x, display.y, display.x + display.width, display.y + display.height}));
    if (const Desktops::Failure failure = context->CopyScreen())
    {
        ADD_FAILURE() << *failure;
        return {};
    }
    const auto bytes = context->GetPixels();
    const auto* const first = reinterpret_cast<const std::uint32_t*>(bytes.data);
    std::vector<std::uint32_t> pixels(first, first + bytes.GetSize() / 4);
    for (std::uint32_t& pixel : pixels)
        pixel |= 0xFF000000U;
    return pixels;
}

} // namespace Orvik::Tests
