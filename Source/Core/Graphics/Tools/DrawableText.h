#pragma once

#include <string>

namespace Orvik::Graphics::Tools
{

/// A text of UTF-8 for the overlay's font, which has only ASCII: a question mark stands for each other character.
[[nodiscard]] std::string ToDrawable(const std::string& text);

} // namespace Orvik::Graphics::Tools
