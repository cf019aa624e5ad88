#pragma once

#include "Data/Search/Template.h"

#include <cstddef>
#include <vector>

namespace Orvik::Data
{

/// All places where each pixel of the template that counts is just so in the picture, from the top and from the left,
/// `most` at most. On all processors. None if the template doesn't fit, or no pixel of it counts.
[[nodiscard]] std::vector<FoundPlace> FindExact(const SearchTemplate& wanted, const SearchPicture& picture,
                                                std::size_t most);

} // namespace Orvik::Data
