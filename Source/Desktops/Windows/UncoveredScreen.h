#pragma once

// Windows' own.

#include "Systems/Windows/WindowsHeaders.h"

#include <vector>

namespace Orvik::Desktops::Windows
{

/// Waits until what lies below a window that was just hidden is drawn.
void AwaitRepaint();

/// The screen without the calling thread's overlays, while it lives. A composed desktop shows nothing of an overlay
/// that hasn't drawn yet, and needs nothing done; elsewhere such a window is black, and is taken off the screen. Its
/// `Window` doesn't learn of it.
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
