#pragma once

#include "Core/Graphics/Renderer/FrameState.h"
#include "Core/Graphics/Renderer/ObjectRenderer.h"
#include "Core/Graphics/Renderer/RenderItems.h"
#include "Core/System/Types/Matrix4.h"
#include "Desktops/OpenGL.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <vector>

namespace Orvik::Graphics::Renderer
{

class Renderer;

/// A mesh of triangles with a colour at each vertex.
struct Polygon
{
    struct GpuData
    {
        GLuint vertexArray = 0;
        GLuint positionBuffer = 0;
        GLuint colorBuffer = 0;
        std::uint32_t uploadedCount = 0; ///< vertices; 0 means that the three objects don't exist yet
    };

    std::uint16_t id = 0;
    GpuData gpuData;
    bool visible = true;
    std::vector<std::array<float, 3>> positions;
    std::vector<std::array<float, 4>> colors; ///< one for each position; more of them aren't used
    System::Math::Matrix4 model;
    /// What was uploaded, if no driver keeps it.
    std::vector<std::array<float, 3>> uploadedPositions;
    std::vector<std::array<float, 4>> uploadedColors;
};

/// Draws triangle meshes. Changes are queued and uploaded by the next `Render`, so that a thread without the context
/// can make them.
class PolygonRenderer : public ObjectRenderer<Polygon>
{
public:
    /// Builds the shader program. False without a context, or if the shaders can't be built; log lines say why.
    [[nodiscard]] bool Initialize(Renderer& renderer);

    /// Uploads and deletes what is queued, then draws the visible polygons in their order. Does nothing without a
    /// context.
    void Render(Renderer& renderer);

    /// Frees the OpenGL objects, if there is a context, and forgets all polygons.
    void Shutdown(Renderer& renderer);

    /// Adds a polygon, queues its upload and stores its id in `id`. Both lists are emptied. Returns `id`.
    std::uint16_t& Create(std::uint16_t& id, std::vector<std::array<float, 3>>& positions,
                          std::vector<std::array<float, 4>>& colors);
    /// Queues the upload of changed positions or colours. A polygon with fewer colours than positions isn't uploaded.
    /// False for an unknown id.
    bool Update(std::uint16_t id);
    /// Removes the polygon; the last one takes its place in the order. The next `Render` deletes its OpenGL objects.
    /// False for an unknown id.
    bool Remove(std::uint16_t id);

    /// Adds the state of the polygons in the next frame.
    void AppendState(FrameState& state);

    /// For drawing into memory: uploads what is queued and adds the items of the visible polygons.
    void CollectItems(const SurfaceSpace& space, std::vector<Raster::Item>& items);

private:
    void Flush(Renderer& renderer);
    void Upload(Renderer& renderer, Polygon& polygon);
    void DeletePending(Renderer& renderer);

    std::vector<std::uint16_t> m_pendingUpdates;
    std::uint32_t m_updateCount = 0; ///< of all that were ever queued
    std::vector<Polygon::GpuData> m_pendingDeletes;
    std::mutex m_mutex;
};

} // namespace Orvik::Graphics::Renderer
