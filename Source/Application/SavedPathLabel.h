#pragma once

#include "Core/Graphics/Tools/TextEdge.h"
#include "Core/Graphics/Tools/TimedLabel.h"

#include <string>

namespace Orvik::SnipBench
{

/// Shows for a second where a file went, or that it went nowhere, in the middle of the screen's lower part. `shown` is
/// UTF-8.
void ShowSavedPath(const std::string& shown, Graphics::Tools::TimedLabel& label,
                   Graphics::Renderer::Renderer& renderer);

/// The same with a dark edge, which the caller hides when the label's time is over. A text that is too long for the
/// screen is shortened in its middle.
void ShowSavedPath(const std::string& path, Graphics::Tools::TimedLabel& label, Graphics::Tools::TextEdge& edge,
                   Graphics::Renderer::Renderer& renderer);

} // namespace Orvik::SnipBench
