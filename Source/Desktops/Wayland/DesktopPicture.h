#pragma once

#include "Desktops/Wayland/OutputCapture.h"
#include "Desktops/Wayland/OutputTransform.h"

#include <optional>

namespace Orvik::Desktops::Wayland
{

/// Where the output lies in a picture of the whole desktop of that size, pixels. Nothing if the picture can't be one of
/// the desktop: it has other proportions.
[[nodiscard]] std::optional<System::Math::Rectangle> FindOutput(const CapturedOutput& output, std::uint32_t width,
                                                                std::uint32_t height);

/// Copies the output's part of a picture of the whole desktop, at the output's own size: an output of another scale
/// than the picture's is brought to its pixels by the nearest one. `target` gets rows from the top, tightly packed.
/// False if the picture can't be one of the desktop.
[[nodiscard]] bool CutOutput(const PixelRows& picture, const CapturedOutput& output, unsigned char* target);

} // namespace Orvik::Desktops::Wayland
