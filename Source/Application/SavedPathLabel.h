#pragma once

#include "Core/Graphics/Tools/TimedLabel.h"

#include <string>

namespace Orvik::SnipBench
{

/// Shows for a second where a file went, or that it went nowhere, in the middle of the screen's lower part. `shown` is
/// UTF-8.
void ShowSavedPath(const std::string& shown, Graphics::Tools::TimedLabel& label,
                   Graphics::Renderer::Renderer& renderer);

} // namespace Orvik::SnipBench
