#pragma once

#include "Core/System/Desktop/KeyCode.h"

#include <cstdint>

namespace Orvik::Desktops::Windows
{

using System::Desktop::KeyCode;

/// The key of a virtual key number, or `Undefined`.
[[nodiscard]] KeyCode GetKeyCode(std::uint32_t virtualKey) noexcept;

/// The virtual key number of a key; 0xFFFFFFFF for the two codes without a key.
[[nodiscard]] std::uint32_t GetVirtualKey(KeyCode key) noexcept;

} // namespace Orvik::Desktops::Windows
