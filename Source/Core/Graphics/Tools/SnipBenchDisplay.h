#pragma once

#include "Core/System/Device/DisplayDescriptor.h"
#include "Core/System/Math/Point.h"
#include "Core/System/Tools/ToolContext.h"

namespace Orvik::Graphics::Tools
{

/// The display with that id; null also where there is no display system.
[[nodiscard]] const System::Device::Display::DisplayDescriptor* FindDisplay(std::uint16_t id);

/// What is subtracted from a screen position on the context's display to make it one on the window.
[[nodiscard]] System::Math::Point GetDisplayOrigin(const System::Tools::ToolContext& context);

} // namespace Orvik::Graphics::Tools
