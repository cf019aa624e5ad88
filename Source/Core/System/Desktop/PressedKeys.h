#pragma once

#include "Core/System/Desktop/KeyCode.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>

namespace Orvik::System::Desktop
{

/// The keys whose press a window has seen, by their physical number. It keeps keys from sticking: a release gets the
/// code of its press even if the layout has changed in between, and a key whose release won't reach the window is
/// released.
class PressedKeys
{
public:
    void Press(std::uint8_t physicalKey, KeyCode key);

    /// Whether the press was seen, but not the release.
    [[nodiscard]] bool IsDown(std::uint8_t physicalKey) const;

    /// The code to report for a release: that of the press, or `key` if the press wasn't seen.
    [[nodiscard]] KeyCode Release(std::uint8_t physicalKey, KeyCode key);

    /// Queues a release for every pressed key, because the real one won't reach this window any more.
    void LetGo();

    [[nodiscard]] bool HasQueuedRelease() const { return !m_queued.empty(); }

    /// Takes the next queued release; `Undefined` if there is none.
    [[nodiscard]] KeyCode TakeQueuedRelease();

private:
    std::array<KeyCode, 256> m_pressed = {};
    std::deque<KeyCode> m_queued;
};

} // namespace Orvik::System::Desktop
