#pragma once

#include "Data/Run/Arguments.h"
#include "Data/Run/Report.h"

#include <string>
#include <vector>

namespace Orvik::Data
{

/// What the program can do. Each stands in a file of its own name.
struct Verb
{
    CallSpec spec;

    /// Does it. What is wrong with the call, before anything is done; empty otherwise.
    std::string (*run)(const Arguments& arguments, Report& report);
};

[[nodiscard]] Verb GetCheckVerb();
[[nodiscard]] Verb GetCropVerb();
[[nodiscard]] Verb GetMaskVerb();
[[nodiscard]] Verb GetDrawVerb();
[[nodiscard]] Verb GetSheetVerb();
[[nodiscard]] Verb GetExportVerb();
[[nodiscard]] Verb GetImportVerb();
[[nodiscard]] Verb GetStatsVerb();
[[nodiscard]] Verb GetFindVerb();

/// All of them, in the order in which the help lists them.
[[nodiscard]] const std::vector<Verb>& GetVerbs();

/// The most operands of a verb that takes any number.
inline constexpr std::size_t s_anyNumber = 10'000;

} // namespace Orvik::Data
