#pragma once

#include "Core/Graphics/Raster/Image.h"
#include "Core/Graphics/Renderer/FrameState.h"
#include "Core/Graphics/Renderer/ObjectStore.h"
#include "Core/Graphics/Renderer/RenderItems.h"
#include "Core/System/Types/Matrix4.h"
#include "Desktops/OpenGL.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace Orvik::Graphics::Renderer
{

class Renderer;

/// How long the pixels of an upload stay where and as they are.
enum class PixelLife : std::uint8_t
{
    Call,    ///< a copy is made
    Texture, ///< as long as the texture, or until its next upload: what is drawn in memory needs no copy
};

/// An image on a quad of side 1 around the origin; `model` gives it size and place.
struct Texture
{
    struct GpuData
    {
        GLuint handle = 0; ///< the texture's OpenGL name, 0 before the first upload
        std::uint16_t width = 0;
        std::uint16_t height = 0;
    };

    std::uint16_t id = 0;
    GpuData gpuData;
    bool visible = true;
    System::Math::Matrix4 model;
    System::Math::Vector4 color = {1.0F, 1.0F, 1.0F, 1.0F}; ///< multiplies the image's colour
    std::uint32_t uploads = 0;                              ///< counts them
    std::shared_ptr<Raster::Image> image;                   ///< the pixels, where no driver keeps them
};

/// Draws images. Enlarged they show hard pixel squares, shrunk they are filtered. They are opaque.
class TextureRenderer
{
public:
    /// Builds the shader program and the square, and asks for the longest side. False without a context, or if the
    /// shaders can't be built; log lines have said why.
    [[nodiscard]] bool Initialize(Renderer& renderer);

    /// For drawing into memory: no side of a picture is too long.
    void InitializeForRaster();

    /// Deletes what was removed, then draws the visible textures in their order. Does nothing without a context.
    void Render(Renderer& renderer);

    /// Frees the OpenGL objects, where there is a context still, and forgets all textures.
    void Shutdown(Renderer& renderer);

    /// Adds a texture, stores its id in `id` and uploads the pixels: `height` rows from the top, tightly packed, in
    /// the order blue, green, red and, with 32 bits per pixel, alpha. Returns `id`.
    std::uint16_t& Create(std::uint16_t& id, std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel,
                          const void* pixels, Renderer& renderer, PixelLife life = PixelLife::Call);

    /// The texture, or null. Good until the next `Create` or `Remove`.
    [[nodiscard]] Texture* Get(std::uint16_t id);

    /// Replaces the pixels in place. Another size than the first upload's is an assertion failure. An empty first
    /// picture is no upload: the next one is the first again. False for an unknown id, without a context or pixels, or
    /// with less than 24 bits per pixel; nothing changes then.
    bool UpdateBitmap(std::uint16_t id, std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel,
                      const void* pixels, Renderer& renderer, PixelLife life = PixelLife::Call);

    /// The longest side of a picture that the driver takes, in pixels; 0 before `Initialize`.
    [[nodiscard]] std::int32_t GetMaximumSide() const { return m_maximumSide; }

    /// Takes the texture out; the last one takes its place in the order. Its OpenGL object goes at the next `Render`,
    /// so this may run away from the drawing. False for an unknown id.
    bool Remove(std::uint16_t id);

    /// Adds what the next frame's textures are made of.
    void AppendState(FrameState& state) const;

    /// For drawing into memory: adds what the visible textures come to.
    void CollectItems(const SurfaceSpace& space, std::vector<Raster::Item>& items);

    [[nodiscard]] GLuint GetProgram() const { return m_program; }
    [[nodiscard]] std::size_t GetCount() const { return m_objects.GetCount(); }

private:
    [[nodiscard]] static bool CanUpload(const Renderer& renderer);
    static void UploadToDriver(Texture& texture, bool isFirst, std::uint8_t bitsPerPixel, const void* pixels,
                               Renderer& renderer);
    static void KeepPixels(Texture& texture, std::uint8_t bitsPerPixel, const void* pixels, PixelLife life);
    void DeletePending(Renderer& renderer);

    ObjectStore<Texture> m_objects;
    std::vector<GLuint> m_pendingDeletes;
    std::mutex m_mutex;
    GLuint m_program = 0;
    GLuint m_vertexArray = 0;
    GLuint m_vertexBuffer = 0;
    GLuint m_indexBuffer = 0;
    GLint m_modelLocation = -1;
    GLint m_colorLocation = -1;
    GLint m_maximumSide = 0;
};

} // namespace Orvik::Graphics::Renderer
