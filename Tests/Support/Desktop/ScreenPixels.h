#pragma once

// Private to the X11 units of this folder.

#include "Tests/Support/Desktop/Picture.h"
#include "Tests/Support/Desktop/XSession.h"

#include <X11/Xutil.h>
#include <cstdint>
#include <memory>

namespace Orvik::Tests
{

struct ImageDeleter
{
    void operator()(XImage* image) const { XDestroyImage(image); }
};

using ImagePointer = std::unique_ptr<XImage, ImageDeleter>;

/// How a screen stores its pixels: converts 8 bits for each channel, 0xAARRGGBB, to the screen's format and back, to
/// the nearest level. Throws `std::runtime_error` for a screen with a colour table.
class ScreenFormat
{
public:
    explicit ScreenFormat(const XSession& session);

    [[nodiscard]] unsigned long ToScreen(std::uint32_t pixel) const;
    /// Opaque.
    [[nodiscard]] std::uint32_t FromScreen(unsigned long pixel) const;

private:
    unsigned long m_red;
    unsigned long m_green;
    unsigned long m_blue;
};

/// Makes the picture the background of a window of the screen's own depth, from its top left corner, and shows it.
/// Returns the pixmap with the picture; the caller frees it.
Pixmap SetBackground(const XSession& session, ::Window window, const Picture& picture);

} // namespace Orvik::Tests
