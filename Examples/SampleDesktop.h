#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <array>
#include <filesystem>

namespace Orvik::Examples
{

/// The chart on the sample desktop, frame included.
inline constexpr Tests::Area SampleChart{88, 242, 582, 274};

/// The button of the sample desktop's form, frame included.
inline constexpr Tests::Area SampleButton{1088, 288, 112, 32};

/// The form's first field, frame included.
inline constexpr Tests::Area SampleField{880, 112, 320, 28};

/// The corner of the shed on the sample desktop's plan: a frame of one pixel on grass.
inline constexpr Tests::Position SampleShed{780, 416};

/// The outline of the flower bed on the sample desktop's plan.
inline constexpr std::array<Tests::Position, 6> SampleBed = {
    {{1002, 600}, {872, 572}, {842, 470}, {930, 432}, {1040, 448}, {1092, 520}}};

/// A picture of a desktop of at least 1280 by 720 pixels: a page with a chart, a form, a plan, and a task bar. Its
/// texts are in the font of that file; `std::runtime_error` if there is none.
[[nodiscard]] Tests::Picture MakeSampleDesktop(int width, int height, const std::filesystem::path& fontFile);

} // namespace Orvik::Examples
