#pragma once

#include "Data/Search/Template.h"

#include <cstddef>
#include <vector>

namespace Orvik::Data
{

/// How alike the template's counted pixels and those at a place of the picture are: the normalised correlation of their
/// three channels, each without its mean, from -1 to 1. 0 where either is of one colour. The template fits there.
[[nodiscard]] double GetCorrelation(const SearchTemplate& wanted, const SearchPicture& picture, std::int32_t x,
                                    std::int32_t y);

/// Whether the template can be correlated: it fits, isn't of one colour alone, and has sides that aren't too long.
[[nodiscard]] bool CanCorrelate(const SearchTemplate& wanted, const SearchPicture& picture);

/// The places with at least that correlation that are better than all around them, the best first, `most` at most.
/// Of places that lie less than half the template apart only the best is one. On all processors; `CanCorrelate` holds.
[[nodiscard]] std::vector<FoundPlace> FindSimilar(const SearchTemplate& wanted, const SearchPicture& picture,
                                                  double leastScore, std::size_t most);

} // namespace Orvik::Data
