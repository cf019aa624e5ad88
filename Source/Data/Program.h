#pragma once

#include "Data/Run/Report.h"

#include <string>
#include <vector>

namespace Orvik::Data
{

/// Does what the arguments, without the program's own path, ask for. What the process has to end with.
[[nodiscard]] ExitCode RunProgram(const std::vector<std::string>& words, Report::Streams streams);

} // namespace Orvik::Data
