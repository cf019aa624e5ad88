#pragma once

#include "Tests/Support/Desktop/Picture.h"

namespace Orvik::Examples
{

/// The window of the sample desktop that the demo selects, frame included.
inline constexpr Tests::Area SampleWindow{160, 120, 420, 280};

/// A picture of a desktop with a few windows on it. Its colours are dark, so that the overlay's lines stand out.
[[nodiscard]] Tests::Picture MakeSampleDesktop(int width, int height);

} // namespace Orvik::Examples
