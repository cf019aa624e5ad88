#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <memory>
#include <string>

namespace Orvik::Tests
{

class XSession;

/// A window of another program that shows a picture while it lives, above the earlier windows. No window manager moves
/// it; it may reach beyond the screen.
class PaintedWindow
{
public:
    PaintedWindow(const std::string& displayName, Position position, const Picture& picture);
    ~PaintedWindow();
    PaintedWindow(const PaintedWindow&) = delete;
    PaintedWindow& operator=(const PaintedWindow&) = delete;

    /// Shows another picture of the same size.
    void Show(const Picture& picture);

private:
    std::unique_ptr<XSession> m_session; ///< its windows go with it
    unsigned long m_window;
};

} // namespace Orvik::Tests
