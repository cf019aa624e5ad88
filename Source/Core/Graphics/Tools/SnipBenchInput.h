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

/// The left mouse button, or the space bar in its place, going down or up.
[[nodiscard]] constexpr bool IsSelectInput(const System::Tools::ToolContext& context) noexcept
{
    const bool isLeftButton = context.type == System::Tools::ToolEventType::MouseButton && context.leftButton;
    return isLeftButton || IsKey(context, System::Desktop::KeyCode::Space);
}

/// What takes a step back: the right mouse button going up.
[[nodiscard]] constexpr bool IsRightRelease(const System::Tools::ToolContext& context) noexcept
{
    return context.type == System::Tools::ToolEventType::MouseButton && !context.leftButton && !context.pressed;
}

} // namespace Orvik::Graphics::Tools
