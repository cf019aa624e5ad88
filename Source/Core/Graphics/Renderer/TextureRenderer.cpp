#include "Core/Graphics/Renderer/TextureRenderer.h"

#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/System/Error/Assertion.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>

namespace Orvik::Graphics::Renderer
{
namespace
{

constexpr GLsizei s_vertexStride = 5 * sizeof(float);
constexpr GLsizei s_indexCount = 6;
constexpr std::uint8_t s_bitsWithAlpha = 32;
constexpr std::uint8_t s_bitsWithoutAlpha = 24;

/// An attribute's place within a vertex, in the form that OpenGL expects.
const void* ToOffset(std::uintptr_t bytes)
{
    return reinterpret_cast<const void*>(bytes);
}

void CreatePictureQuad(const EntryPoints& gl, GLuint vertexBuffer, GLuint indexBuffer)
{
    // clang-format off
    constexpr std::array<float, 20> vertices = {
         0.5F,  0.5F, 0.0F,  1.0F, 1.0F,
         0.5F, -0.5F, 0.0F,  1.0F, 0.0F,
        -0.5F, -0.5F, 0.0F,  0.0F, 0.0F,
        -0.5F,  0.5F, 0.0F,  0.0F, 1.0F,
    };
    // clang-format on
    constexpr std::array<GLuint, s_indexCount> indices = {0, 3, 1, 1, 3, 2};
    gl.glBindBuffer(GL_ARRAY_BUFFER, vertexBuffer);
    gl.glBufferData(GL_ARRAY_BUFFER, sizeof(vertices), vertices.data(), GL_STATIC_DRAW);
    gl.glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, s_vertexStride, ToOffset(0));
    gl.glEnableVertexAttribArray(0);
    gl.glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, s_vertexStride, ToOffset(3 * sizeof(float)));
    gl.glEnableVertexAttribArray(1);
    gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indexBuffer);
    gl.glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof(indices), indices.data(), GL_STATIC_DRAW);
}

float GetColumnLength(const System::Math::Matrix4& matrix, std::size_t column)
{
    const float* const elements = &matrix.elements[column * 4];
    return std::sqrt(elements[0] * elements[0] + elements[1] * elements[1] + elements[2] * elements[2]);
}

void ScaleColumn(System::Math::Matrix4& matrix, std::size_t column, float factor)
{
    for (std::size_t row = 0; row < 4; ++row)
        matrix.elements[column * 4 + row] *= factor;
}

/// A picture without a scale gets its size in pixels.
void ScaleToPixels(Texture& texture)
{
    if (GetColumnLength(texture.model, 0) != 1.0F || GetColumnLength(texture.model, 1) != 1.0F)
        return;
    ScaleColumn(texture.model, 0, static_cast<float>(texture.gpuData.width));
    ScaleColumn(texture.model, 1, static_cast<float>(texture.gpuData.height));
}

/// Makes the texture from its first pixels and leaves it bound.
void UploadFirst(const EntryPoints& gl, Texture& texture, GLenum format, const void* pixels)
{
    gl.glGenTextures(1, &texture.gpuData.handle);
    gl.glBindTexture(GL_TEXTURE_2D, texture.gpuData.handle);
    gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, texture.gpuData.width, texture.gpuData.height, 0, format,
                    GL_UNSIGNED_BYTE, pixels);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
}

} // namespace

bool TextureRenderer::Initialize(Renderer& renderer)
{
    const GLContext& context = renderer.GetContext();
    if (!BuildProgram(context, "texture.vert", "texture.frag"))
        return false;
    const EntryPoints& gl = context.GetEntryPoints();
    gl.glGetIntegerv(GL_MAX_TEXTURE_SIZE, &m_maximumSide);
    m_modelLocation = gl.glGetUniformLocation(m_program, "model");
    m_colorLocation = gl.glGetUniformLocation(m_program, "color");
    gl.glGenVertexArrays(1, &m_vertexArray);
    gl.glGenBuffers(1, &m_vertexBuffer);
    gl.glGenBuffers(1, &m_indexBuffer);
    gl.glBindVertexArray(m_vertexArray);
    CreatePictureQuad(gl, m_vertexBuffer, m_indexBuffer);
    gl.glBindVertexArray(0);
    return true;
}

void TextureRenderer::InitializeForRaster()
{
    m_maximumSide = std::numeric_limits<std::uint16_t>::max();
}

void TextureRenderer::Render(Renderer& renderer)
{
    if (!renderer.GetContext().IsValid())
        return;
    const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
    gl.glUseProgram(m_program);
    gl.glBindVertexArray(m_vertexArray);
    gl.glActiveTexture(GL_TEXTURE0);
    {
        const std::lock_guard lock(m_mutex);
        DeletePending(renderer);
        for (const Texture& texture : m_objects)
        {
            if (!texture.visible || texture.gpuData.handle == 0)
                continue;
            gl.glUniformMatrix4fv(m_modelLocation, 1, GL_FALSE, texture.model.elements.data());
            gl.glUniform4f(m_colorLocation, texture.color.x, texture.color.y, texture.color.z, texture.color.w);
            gl.glBindTexture(GL_TEXTURE_2D, texture.gpuData.handle);
            gl.glDrawElements(GL_TRIANGLES, s_indexCount, GL_UNSIGNED_INT, nullptr);
        }
    }
    gl.glBindVertexArray(0);
}

void TextureRenderer::AppendState(FrameState& state) const
{
    for (const Texture& texture : m_objects)
    {
        if (!texture.visible)
            continue;
        state.Add(texture.id);
        state.Add(texture.uploads);
        state.Add(texture.model);
        state.Add(texture.color);
    }
}

void TextureRenderer::CollectItems(const SurfaceSpace& space, std::vector<Raster::Item>& items)
{
    const std::lock_guard lock(m_mutex);
    m_pendingDeletes.clear(); // no driver has them
    for (const Texture& texture : m_objects)
    {
        if (texture.visible)
            AppendItems(texture, space, items);
    }
}

void TextureRenderer::Shutdown(Renderer& renderer)
{
    const bool isValid = renderer.GetContext().IsValid();
    if (isValid)
    {
        const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
        gl.glDeleteBuffers(1, &m_vertexBuffer);
        gl.glDeleteBuffers(1, &m_indexBuffer);
        gl.glDeleteVertexArrays(1, &m_vertexArray);
    }
    m_vertexBuffer = 0;
    m_indexBuffer = 0;
    m_vertexArray = 0;

    const std::lock_guard lock(m_mutex);
    if (isValid)
    {
        for (const Texture& texture : m_objects)
            m_pendingDeletes.push_back(texture.gpuData.handle);
        DeletePending(renderer);
    }
    m_pendingDeletes.clear();
    m_objects.Clear();
}

std::uint16_t& TextureRenderer::Create(std::uint16_t& id, std::uint16_t width, std::uint16_t height,
                                       std::uint8_t bitsPerPixel, const void* pixels, Renderer& renderer,
                                       PixelLife life)
{
    {
        const std::lock_guard lock(m_mutex);
        id = m_objects.Add().id;
    }
    UpdateBitmap(id, width, height, bitsPerPixel, pixels, renderer, life);
    return id;
}

bool TextureRenderer::UpdateBitmap(std::uint16_t id, std::uint16_t width, std::uint16_t height,
                                   std::uint8_t bitsPerPixel, const void* pixels, Renderer& renderer, PixelLife life)
{
    Texture* const texture = m_objects.Find(id);
    if (texture == nullptr || !CanUpload(renderer))
        return false;
    const bool isFirst = texture->gpuData.width == 0 && texture->gpuData.height == 0;
    if (isFirst && (width == 0 || height == 0))
        return true; // nothing to upload; the next picture is the first again
    // With fewer bytes per pixel OpenGL would read beyond the rows.
    if (pixels == nullptr || bitsPerPixel < s_bitsWithoutAlpha)
        return false;

    if (isFirst)
    {
        texture->gpuData.width = width;
        texture->gpuData.height = height;
        ScaleToPixels(*texture);
    }
    ORVIK_ASSERT(texture->gpuData.width == width && texture->gpuData.height == height,
                 "Update bitmap size doesn't match!");
    if (texture->gpuData.width != width || texture->gpuData.height != height)
        return false;
    ++texture->uploads;
    if (renderer.DrawsIntoMemory())
        KeepPixels(*texture, bitsPerPixel, pixels, life);
    else
        UploadToDriver(*texture, isFirst, bitsPerPixel, pixels, renderer);
    return true;
}

bool TextureRenderer::CanUpload(const Renderer& renderer)
{
    return renderer.DrawsIntoMemory() || renderer.GetContext().IsValid();
}

void TextureRenderer::KeepPixels(Texture& texture, std::uint8_t bitsPerPixel, const void* pixels, PixelLife life)
{
    if (texture.image == nullptr)
        texture.image = std::make_shared<Raster::Image>();
    const std::uint16_t width = texture.gpuData.width;
    const std::uint16_t height = texture.gpuData.height;
    if (bitsPerPixel == s_bitsWithAlpha && life == PixelLife::Texture)
        texture.image->Borrow(width, height, pixels);
    else // like OpenGL: four bytes per pixel for 32 bits, three for anything else
        texture.image->Set(width, height, bitsPerPixel == s_bitsWithAlpha ? 4 : 3, pixels);
}

void TextureRenderer::UploadToDriver(Texture& texture, bool isFirst, std::uint8_t bitsPerPixel, const void* pixels,
                                     Renderer& renderer)
{
    const std::uint16_t width = texture.gpuData.width;
    const std::uint16_t height = texture.gpuData.height;
    const GLenum format = bitsPerPixel == s_bitsWithAlpha ? GL_BGRA : GL_BGR;
    const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
    if (isFirst)
    {
        UploadFirst(gl, texture, format, pixels);
    }
    else
    {
        gl.glBindTexture(GL_TEXTURE_2D, texture.gpuData.handle);
        gl.glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, format, GL_UNSIGNED_BYTE, pixels);
    }
    gl.glGenerateMipmap(GL_TEXTURE_2D);
    gl.glBindTexture(GL_TEXTURE_2D, 0);
}

bool TextureRenderer::Remove(std::uint16_t id)
{
    const std::lock_guard lock(m_mutex);
    const std::optional<Texture> removed = m_objects.Remove(id);
    if (removed)
        m_pendingDeletes.push_back(removed->gpuData.handle);
    return removed.has_value();
}

void TextureRenderer::DeletePending(Renderer& renderer)
{
    for (const GLuint handle : m_pendingDeletes)
        renderer.GetContext().GetEntryPoints().glDeleteTextures(1, &handle);
    m_pendingDeletes.clear();
}

} // namespace Orvik::Graphics::Renderer
