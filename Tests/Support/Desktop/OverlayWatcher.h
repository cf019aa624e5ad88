#pragma once

#include "Tests/Support/Desktop/Picture.h"
#include "Tests/Support/Desktop/Screen.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace Orvik::Tests
{

class XSession;

/// Watches the program's overlay from outside: its window, and what it has drawn.
class OverlayWatcher
{
public:
    enum class State
    {
        Missing, ///< no such window
        Hidden,
        Visible,
    };

    static constexpr std::chrono::milliseconds DefaultLimit{20000};

    /// Looks at the whole screen.
    explicit OverlayWatcher(const std::string& displayName);
    /// Looks at the whole screen of a compositor, or below a nested one, whose windows the X server doesn't know: the
    /// overlay is there while the screen isn't as it was, which is `ground`.
    OverlayWatcher(const std::string& displayName, Picture ground);
    /// Looks at that part of the screen: one monitor of several, which may reach beyond the screen.
    OverlayWatcher(const std::string& displayName, const Area& monitor);
    ~OverlayWatcher();
    OverlayWatcher(const OverlayWatcher&) = delete;
    OverlayWatcher& operator=(const OverlayWatcher&) = delete;

    /// The overlay is told by its place among the root's own windows: one pixel above its monitor and one taller. On a
    /// compositor it is visible or missing.
    [[nodiscard]] State GetState() const;
    /// False if the overlay doesn't reach that state in time.
    [[nodiscard]] bool WaitFor(State state, std::chrono::milliseconds limit = DefaultLimit) const;
    /// The same for an existing window, shown or not: it may be hidden for a moment.
    [[nodiscard]] bool WaitForWindow(std::chrono::milliseconds limit = DefaultLimit) const;
    /// Waits for the frame whose crosshair is at `cursor`: the pixel column to its right and the row below it are
    /// white. Lines outside of the screen aren't tested. False if it doesn't come in time.
    [[nodiscard]] bool WaitForCrosshair(Position cursor, std::chrono::milliseconds limit = DefaultLimit) const;

    /// The place of the crosshair, if there is one and it leaves the last column and row out.
    [[nodiscard]] std::optional<Position> FindCrosshair() const;

    /// What the screen of a compositor shows without the overlay from now on.
    void SetGround(Picture ground) { m_ground = std::move(ground); }

    /// Of X servers alone: how many things the server keeps for the overlay's process; 0 if it doesn't say.
    [[nodiscard]] unsigned int CountServerResources() const;

    /// Of X servers alone: asks the overlay to close, as a window manager does.
    void AskToClose() const;

private:
    /// The X window, 0 if there is none.
    [[nodiscard]] unsigned long FindWindow(State& state) const;
    [[nodiscard]] bool HasCrosshair(Position cursor) const;
    /// Whether there are lines everywhere.
    [[nodiscard]] bool IsBright() const;
    /// The part of the monitor that is on the screen.
    [[nodiscard]] Area GetVisiblePart() const;

    std::unique_ptr<XSession> m_session; ///< null for a compositor
    Screen m_screen;
    Area m_monitor;
    std::optional<Picture> m_ground; ///< of a compositor
};

} // namespace Orvik::Tests
