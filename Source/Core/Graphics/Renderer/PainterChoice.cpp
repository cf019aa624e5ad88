#include "Core/Graphics/Renderer/PainterChoice.h"

#include "Desktops/Desktop.h"

#include <cstdlib>
#include <string_view>

namespace Orvik::Graphics::Renderer
{
namespace
{

using Desktops::SurfaceKind;

constexpr const char* s_variable = "ORVIK_RENDERER";
constexpr const char* s_byHand = "ORVIK_RENDERER says so";

} // namespace

PainterChoice ChoosePainter()
{
    const char* const value = std::getenv(s_variable);
    const std::string_view wanted = value != nullptr ? value : "";
    if (wanted == "opengl")
        return {SurfaceKind::OpenGL, true, s_byHand};
    if (wanted == "raster")
        return {SurfaceKind::Pixels, true, s_byHand};
    const Desktops::GraphicsCard card = Desktops::GetDesktop().FindGraphicsCard();
    return {card.isReachable ? SurfaceKind::OpenGL : SurfaceKind::Pixels, false, card.reason};
}

} // namespace Orvik::Graphics::Renderer
