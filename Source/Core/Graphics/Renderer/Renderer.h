#pragma once

#include "Core/Graphics/Renderer/FrameState.h"
#include "Core/Graphics/Renderer/GLContext.h"
#include "Core/Graphics/Renderer/LineRenderer.h"
#include "Core/Graphics/Renderer/PainterChoice.h"
#include "Core/Graphics/Renderer/PolygonRenderer.h"
#include "Core/Graphics/Renderer/QuadRenderer.h"
#include "Core/Graphics/Renderer/RasterPainter.h"
#include "Core/Graphics/Renderer/TextRenderer.h"
#include "Core/Graphics/Renderer/TextureRenderer.h"
#include "Core/System/Types/Matrix4.h"
#include "Desktops/NativeWindow.h"

#include <array>
#include <cstdint>
#include <utility>

namespace Orvik::Graphics::Renderer
{

/// The one drawing object of the program. Clients ask the member renderers for objects, keep their ids, change the
/// records directly, and call `Render` once a frame. The painter turns the objects into pixels: OpenGL, or the program
/// itself in memory (`RasterPainter`). The origin is the bottom left corner, y counts upward, and a greater z is nearer
/// to the viewer. One thread.
class Renderer
{
public:
    /// The drawing surface in pixels.
    struct ScreenSize
    {
        float width = 0.0F;
        float height = 0.0F;
    };

    /// Sets how objects become pixels; by OpenGL if this isn't called. Before `Initialize`, and the window must have
    /// been made for it.
    void SetPainter(PainterChoice choice) { m_choice = std::move(choice); }

    /// Creates the context on the window and the member renderers. False if one of them fails; log lines say why, the
    /// others stay, and the renderer draws nothing. If there is no OpenGL and the user didn't demand it, the objects
    /// are drawn into memory instead. A missing or unreadable shader file or font is a failure in both cases.
    [[nodiscard]] bool Initialize(Desktops::NativeWindow window, const char* className);

    /// Sets the size of the drawing surface, in pixels. Has to be called before the first object is requested. A
    /// surface without area changes nothing.
    void Resize(Desktops::NativeWindow window, std::int32_t width, std::int32_t height);

    /// Draws all visible objects and shows the picture, if it would differ from the last one. False if nothing was
    /// drawn. Draws nothing without a window: a driver may lose memory with each picture that it can't show.
    bool Render(Desktops::NativeWindow window);

    /// To be called when the window has lost its picture: the next `Render` draws in any case.
    void Invalidate();

    /// Frees everything and releases the context.
    void Shutdown(Desktops::NativeWindow window);

    /// How much larger than on a screen of 1080 rows everything should be drawn; at least 1.
    [[nodiscard]] float GetUiScale() const;
    [[nodiscard]] const ScreenSize& GetScreenSize() const { return m_screenSize; }

    /// Whether objects are drawn into memory. Known after `Initialize`.
    [[nodiscard]] bool DrawsIntoMemory() const { return m_drawsIntoMemory; }
    [[nodiscard]] GLContext& GetContext() { return m_context; }
    [[nodiscard]] const GLContext& GetContext() const { return m_context; }
    [[nodiscard]] LineRenderer& GetLineRenderer() { return m_lineRenderer; }
    [[nodiscard]] PolygonRenderer& GetPolygonRenderer() { return m_polygonRenderer; }
    [[nodiscard]] TextureRenderer& GetTextureRenderer() { return m_textureRenderer; }
    [[nodiscard]] TextRenderer& GetTextRenderer() { return m_textRenderer; }
    [[nodiscard]] QuadRenderer& GetQuadRenderer() { return m_quadRenderer; }

private:
    [[nodiscard]] bool InitializeMembers();
    [[nodiscard]] bool InitializeForRaster();
    [[nodiscard]] bool HasChanged();
    [[nodiscard]] std::array<GLuint, 5> GetPrograms() const;
    [[nodiscard]] GLsizeiptr GetSharedSize() const;
    void CreateSharedBuffer();

    GLContext m_context;
    PainterChoice m_choice;
    bool m_initialized = false;
    bool m_drawsIntoMemory = false;
    GLuint m_sharedBuffer = 0;
    System::Math::Matrix4 m_projection;
    System::Math::Matrix4 m_view;
    ScreenSize m_screenSize;
    LineRenderer m_lineRenderer;
    PolygonRenderer m_polygonRenderer;
    TextureRenderer m_textureRenderer;
    TextRenderer m_textRenderer;
    QuadRenderer m_quadRenderer;
    RasterPainter m_rasterPainter;
    FrameState m_shown; ///< what the last frame of OpenGL was made of
    FrameState m_wanted;
    bool m_mustDraw = true; ///< even if the last frame is the same
};

} // namespace Orvik::Graphics::Renderer
