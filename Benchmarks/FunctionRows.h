#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Orvik::Benchmarks
{

/// Something that is measured: the same work whenever it is done, on one thread, without a display.
struct FunctionRow
{
    std::string name; ///< without blanks
    /// Makes what the work needs; what it returns does the work once. One row at a time.
    std::function<std::function<void()>()> prepare;
    int countedTimes = 1; ///< how often the work is done for a count: short work differs from time to time
};

[[nodiscard]] std::vector<FunctionRow> MakeFunctionRows();

} // namespace Orvik::Benchmarks
