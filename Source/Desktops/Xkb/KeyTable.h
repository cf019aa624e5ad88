#pragma once

// Of the desktops whose keyboards are described by XKB.

#include "Core/System/Desktop/KeyCode.h"

#include <cstdint>
#include <functional>

namespace Orvik::Desktops::Xkb
{

using System::Desktop::KeyCode;

/// Gives the keysym that a key has at the unshifted level of the layout in force, 0 for none.
using SymbolLookUp = std::function<std::uint32_t(unsigned int keycode)>;

/// The key of a keysym of the unshifted level, or `Undefined`. Both levels of the keypad give the keypad's keys.
[[nodiscard]] KeyCode FindKey(std::uint32_t symbol);

/// The key of a keycode, which XKB counts from 8, as Windows gives it in the same layout: by the unshifted keysym, or
/// by the key's place where no key is named after that keysym. A key in the row of digits is a digit unless it has a
/// letter. Where a layout moves plus or minus, the keys to the right of both rows whose keysym has no code are numbered
/// one after the other. `Undefined` if neither keysym nor place gives one.
[[nodiscard]] KeyCode TranslateKey(unsigned int keycode, const SymbolLookUp& getSymbol);

} // namespace Orvik::Desktops::Xkb
