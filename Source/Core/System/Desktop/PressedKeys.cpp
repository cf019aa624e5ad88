#include "Core/System/Desktop/PressedKeys.h"

#include <utility>

namespace Orvik::System::Desktop
{

void PressedKeys::Press(std::uint8_t physicalKey, KeyCode key)
{
    m_pressed[physicalKey] = key;
}

bool PressedKeys::IsDown(std::uint8_t physicalKey) const
{
    return m_pressed[physicalKey] != KeyCode::Undefined;
}

KeyCode PressedKeys::Release(std::uint8_t physicalKey, KeyCode key)
{
    const KeyCode pressed = std::exchange(m_pressed[physicalKey], KeyCode::Undefined);
    return pressed != KeyCode::Undefined ? pressed : key;
}

void PressedKeys::LetGo()
{
    for (KeyCode& key : m_pressed)
    {
        if (key != KeyCode::Undefined)
            m_queued.push_back(std::exchange(key, KeyCode::Undefined));
    }
}

KeyCode PressedKeys::TakeQueuedRelease()
{
    if (m_queued.empty())
        return KeyCode::Undefined;
    const KeyCode key = m_queued.front();
    m_queued.pop_front();
    return key;
}

} // namespace Orvik::System::Desktop
