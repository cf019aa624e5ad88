#pragma once

#include "Tests/Support/Desktop/NestedCompositor.h"

#include <memory>
#include <optional>

namespace Orvik::Tests
{

/// The compositor that the cases run on, as `ORVIK_TEST_COMPOSITOR` names it; nothing for the X server alone. Throws
/// `std::runtime_error` for a name that is none.
[[nodiscard]] std::optional<CompositorKind> GetTestCompositorKind();

/// The one compositor of this process: of that size in physical pixels, at the scale that `ORVIK_TEST_SCALE` says (1 if
/// it doesn't), running, and with a picture on it. It outlives the cases, which
/// begin on it one after the other. Only where there is a kind.
[[nodiscard]] std::shared_ptr<NestedCompositor> BorrowTestCompositor(int width, int height);

/// Ends it, for a case that leaves it in no state for others.
void EndTestCompositor();

} // namespace Orvik::Tests
