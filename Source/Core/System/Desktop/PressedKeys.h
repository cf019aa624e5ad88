#pragma once

#include "Core/System/Desktop/KeyCode.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>

namespace Orvik::System::Desktop
{

/// The keys that a window has seen go down, by their physical number. It keeps a key from sticking: a release has
/// the code of its press even if the layout changed in between, and keys whose release will go elsewhere are let go.
class PressedKeys
{
public:
    void Press(std::uint8_t physicalKey, KeyCode key);

    /// Whether its press was seen, and not yet its release.
    [[nodiscard]] bool IsDown(std::uint8_t physicalKey) const;

    /// The code to report for a release: that of the press, or `key` if the press wasn't seen.
    [[nodiscard]] KeyCode Release(std::uint8_t physicalKey, KeyCode key);

    /// Queues a release for every key that is down: its own won't come here any more.
    void LetGo();

    [[nodiscard]] bool HasQueuedRelease() const { return !m_queued.empty(); }

    /// Takes the next queued release; `Undefined` if there is none.
    [[nodiscard]] KeyCode TakeQueuedRelease();

private:
    std::array<KeyCode, 256> m_pressed = {};
    std::deque<KeyCode> m_queued;
};

} // namespace Orvik::System::Desktop
