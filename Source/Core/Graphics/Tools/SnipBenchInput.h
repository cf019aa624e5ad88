#pragma once

#include "Core/Graphics/Tools/ToolContext.h"
#include "Core/System/Desktop/KeyCode.h"

#include <cstdint>

namespace Orvik::Graphics::Tools
{

[[nodiscard]] constexpr bool IsKey(const System::Tools::ToolContext& context, System::Desktop::KeyCode key) noexcept
{
    return context.type == System::Tools::ToolEventType::Key && context.key == static_cast<std::uint8_t>(key);
}

/// The left mouse button, or the space bar instead of it, going down or up.
[[nodiscard]] constexpr bool IsSelectInput(const System::Tools::ToolContext& context) noexcept
{
    const bool isLeftButton = context.type == System::Tools::ToolEventType::MouseButton && context.leftButton;
    return isLeftButton || IsKey(context, System::Desktop::KeyCode::Space);
}

/// The right mouse button going up: it takes a step back.
[[nodiscard]] constexpr bool IsRightRelease(const System::Tools::ToolContext& context) noexcept
{
    return context.type == System::Tools::ToolEventType::MouseButton && !context.leftButton && !context.pressed;
}

} // namespace Orvik::Graphics::Tools
