#pragma once

#include <string_view>

namespace Orvik::System::Device::Cursor
{

/// What the halves report with: logs that `operation` failed for the reason `text`, and returns false.
bool ReportFailure(std::string_view operation, std::string_view text);

} // namespace Orvik::System::Device::Cursor
