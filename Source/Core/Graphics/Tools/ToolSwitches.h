#pragma once

#include <string>
#include <vector>

namespace Orvik::Graphics::Tools
{

/// What a configuration adds to the tool. Nothing of it is on by default.
struct ToolSwitches
{
    bool size = false;                    ///< width and height beside the selection
    bool bright = false;                  ///< the selection's inside isn't dimmed
    bool marks = false;                   ///< finished selections stay visible
    bool undo = false;                    ///< Backspace takes the last selection back
    bool edges = false;                   ///< the last column and row can be selected
    bool toggle = false;                  ///< Tab changes between rectangle and polygon
    bool hints = false;                   ///< F1 shows the keys, so that it chooses no label
    bool contrast = false;                ///< lines and texts have a dark edge
    std::vector<std::string> labels = {}; ///< names of which each selection gets one, UTF-8
};

} // namespace Orvik::Graphics::Tools
