#pragma once

#include "Core/System/Multimedia/Bitmap.h"
#include "Desktops/DisplayDescriptor.h"

namespace Orvik::System::Desktop
{
class Window;
} // namespace Orvik::System::Desktop

namespace Orvik::Graphics::Tools
{

/// Takes a picture of a display, 32 bits to the pixel and opaque, without `window`, which may be null. False if the
/// display's rows are too long for a bitmap, or if the screen can't be copied; `picture` is unchanged then. Only a copy
/// that was begun leaves a log line.
[[nodiscard]] bool CaptureDisplay(const System::Device::Display::DisplayDescriptor& display,
                                  System::Desktop::Window* window, System::Multimedia::Bitmap& picture);

} // namespace Orvik::Graphics::Tools
