#pragma once

#include "Core/Graphics/Raster/Image.h"
#include "Core/Graphics/Renderer/FrameState.h"
#include "Core/Graphics/Renderer/ObjectRenderer.h"
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

/// How long the pixels of an upload keep their place and content.
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

/// Draws images. They are opaque; enlarged ones show hard pixel squares, reduced ones are filtered.
class TextureRenderer : public ObjectRenderer<Texture>
{
public:
    /// Builds the shader program and the square, and reads the longest side. False without a context, or if the shaders
    /// can't be built; log lines say why.
    [[nodiscard]] bool Initialize(Renderer& renderer);

    /// For drawing into memory: no side of a picture is too long.
    void InitializeForRaster();

    /// Deletes what was removed, then draws the visible textures in their order. Does nothing without a context.
    void Render(Renderer& renderer);

    /// Frees the OpenGL objects, if there is a context, and forgets all textures.
    void Shutdown(Renderer& renderer);

    /// Adds a texture, stores its id in `id` and uploads the pixels: `height` rows from the top, without padding, in
    /// the order blue, green, red and, with 32 bits per pixel, alpha. Returns `id`.
    std::uint16_t& Create(std::uint16_t& id, std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel,
                          const void* pixels, Renderer& renderer, PixelLife life = PixelLife::Call);

    /// Replaces the pixels. A size other than the first upload's is an assertion failure. An empty first picture
    /// doesn't count as an upload: the next one is the first. False for an unknown id, without a context or pixels, or
    /// with less than 24 bits per pixel; nothing changes then.
    bool UpdateBitmap(std::uint16_t id, std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel,
                      const void* pixels, Renderer& renderer, PixelLife life = PixelLife::Call);

    /// The longest side of a picture that the driver accepts, in pixels; 0 before `Initialize`.
    [[nodiscard]] std::int32_t GetMaximumSide() const { return m_maximumSide; }

    /// Removes the texture; the last one takes its place in the order. The next `Render` deletes its OpenGL object, so
    /// this needs no current context. False for an unknown id.
    bool Remove(std::uint16_t id);

    /// Adds the state of the textures in the next frame.
    void AppendState(FrameState& state) const;

    /// For drawing into memory: adds the items of the visible textures.
    void CollectItems(const SurfaceSpace& space, std::vector<Raster::Item>& items);

private:
    [[nodiscard]] static bool CanUpload(const Renderer& renderer);
    static void UploadToDriver(Texture& texture, bool isFirst, std::uint8_t bitsPerPixel, const void* pixels,
                               Renderer& renderer);
    static void KeepPixels(Texture& texture, std::uint8_t bitsPerPixel, const void* pixels, PixelLife life);
    void DeletePending(Renderer& renderer);

    std::vector<GLuint> m_pendingDeletes;
    std::mutex m_mutex;
    GLuint m_vertexArray = 0;
    GLuint m_vertexBuffer = 0;
    GLuint m_indexBuffer = 0;
    GLint m_colorLocation = -1;
    GLint m_maximumSide = 0;
};

} // namespace Orvik::Graphics::Renderer
