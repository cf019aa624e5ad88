#pragma once

#include "Core/Graphics/Tools/TimedLabel.h"

#include <string>

namespace Orvik::SnipBench
{

/// Shows for a second where a file went, in the middle of the screen's lower part. `path` is UTF-8.
void ShowSavedPath(const std::string& path, Graphics::Tools::TimedLabel& label, Graphics::Renderer::Renderer& renderer);

} // namespace Orvik::SnipBench
