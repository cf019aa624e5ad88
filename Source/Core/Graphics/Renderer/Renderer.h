#pragma once

#include "Core/Graphics/Renderer/GLContext.h"
#include "Core/Graphics/Renderer/LineRenderer.h"
#include "Core/Graphics/Renderer/PolygonRenderer.h"
#include "Core/Graphics/Renderer/QuadRenderer.h"
#include "Core/Graphics/Renderer/TextRenderer.h"
#include "Core/Graphics/Renderer/TextureRenderer.h"
#include "Core/System/Desktop/NativeWindow.h"
#include "Core/System/Math/Matrix4.h"

#include <array>
#include <cstdint>

namespace Orvik::Graphics::Renderer
{

/// The one drawing object of the program. Clients ask the member renderers for objects, keep their ids, change the
/// records in place, and call `Render` once a frame. The origin is the bottom left corner, y counts upward, a greater z
/// is nearer the viewer. One thread.
class Renderer
{
public:
    /// The drawing surface in pixels.
    struct ScreenSize
    {
        float width = 0.0F;
        float height = 0.0F;
    };

    /// Creates the context on the window and the member renderers. False if one of them can't be; log lines have said
    /// why, what came up stays, and the renderer draws nothing.
    [[nodiscard]] bool Initialize(System::Desktop::NativeWindow window, const char* className);

    /// Settles the size of the drawing surface, in pixels. Has to be called before the first object is asked for. A
    /// surface without area changes nothing.
    void Resize(System::Desktop::NativeWindow window, std::int32_t width, std::int32_t height);

    /// Draws all visible objects and shows the picture. Without a window the frame is skipped: a driver may lose memory
    /// with each picture that it can't show.
    void Render(System::Desktop::NativeWindow window);

    /// Frees everything and gives the context up.
    void Shutdown(System::Desktop::NativeWindow window);

    /// How much larger than on a screen of 1080 rows things should be drawn; at least 1.
    [[nodiscard]] float GetUiScale() const;
    [[nodiscard]] const ScreenSize& GetScreenSize() const { return m_screenSize; }

    [[nodiscard]] GLContext& GetContext() { return m_context; }
    [[nodiscard]] LineRenderer& GetLineRenderer() { return m_lineRenderer; }
    [[nodiscard]] PolygonRenderer& GetPolygonRenderer() { return m_polygonRenderer; }
    [[nodiscard]] TextureRenderer& GetTextureRenderer() { return m_textureRenderer; }
    [[nodiscard]] TextRenderer& GetTextRenderer() { return m_textRenderer; }
    [[nodiscard]] QuadRenderer& GetQuadRenderer() { return m_quadRenderer; }

private:
    [[nodiscard]] bool InitializeMembers();
    void CreateSharedBuffer();

    GLContext m_context;
    bool m_initialized = false;
    GLuint m_sharedBuffer = 0;
    System::Math::Matrix4 m_projection;
    System::Math::Matrix4 m_view;
    ScreenSize m_screenSize;
    LineRenderer m_lineRenderer;
    PolygonRenderer m_polygonRenderer;
    TextureRenderer m_textureRenderer;
    TextRenderer m_textRenderer;
    QuadRenderer m_quadRenderer;
};

} // namespace Orvik::Graphics::Renderer
