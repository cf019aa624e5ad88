#pragma once

// Windows' own.

#include "Systems/Windows/WindowsHeaders.h"

#include <vector>

namespace Orvik::Desktops::Windows
{

/// Waits until what is below a window that was just hidden is drawn.
void AwaitRepaint();

/// While it lives, the screen has none of the calling thread's overlays. A composed desktop shows nothing of an overlay
/// that hasn't drawn yet, and nothing needs to be done; otherwise such a window is black, and is taken off the screen.
/// Its `Window` doesn't notice.
class UncoveredScreen
{
public:
    UncoveredScreen();
    UncoveredScreen(const UncoveredScreen&) = delete;
    UncoveredScreen& operator=(const UncoveredScreen&) = delete;
    ~UncoveredScreen();

private:
    std::vector<HWND> m_overlays;
};

} // namespace Orvik::Desktops::Windows
