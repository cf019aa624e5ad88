#pragma once

#include "Core/Graphics/Renderer/FrameState.h"
#include "Core/Graphics/Renderer/ObjectRenderer.h"
#include "Core/System/Types/Matrix4.h"
#include "Desktops/OpenGL.h"

#include <cstdint>
#include <vector>

namespace Orvik::Graphics::Renderer
{

class Renderer;

/// A polyline. Clients change the public values directly through the pointer of `Get`.
struct Line
{
    std::uint16_t id = 0;
    bool visible = true;
    /// The prepared list: the client's points with one more at each end.
    std::vector<System::Math::Vector4> points;
    System::Math::Matrix4 model;
    System::Math::Vector4 color = {1.0F, 1.0F, 1.0F, 1.0F};
    /// Pixels. Below 1 it is drawn as 1, 0 isn't drawn; horizontal and vertical segments are whole pixels thick.
    float thickness = 1.0F;
    float dashLength = 1.0F;
    float gapLength = 0.0F; ///< 0 makes a solid line
};

/// Draws thick polylines. A point's first three components are its position; the fourth multiplies the line's opacity
/// there.
class LineRenderer : public ObjectRenderer<Line>
{
public:
    /// The most points of a prepared list; a client may give two fewer.
    static constexpr std::size_t s_maxPoints = 64;

    /// Builds the shader program and the buffer of points. False without a context, or if the shaders can't be built;
    /// log lines say why.
    [[nodiscard]] bool Initialize(Renderer& renderer);

    /// Draws the visible lines in their order. A line with more than `s_maxPoints` is an assertion failure and the last
    /// of this frame. Does nothing without a context.
    void Render(Renderer& renderer);

    /// Frees the OpenGL objects, if there is a context, and forgets all lines.
    void Shutdown(Renderer& renderer);

    /// Adds a line and stores its id in `id`. `points` is emptied. Returns `id`.
    std::uint16_t& Create(std::uint16_t& id, std::vector<System::Math::Vector4>& points);

    /// Replaces the points; `points` is emptied. Fewer than two are an assertion failure. False for an unknown id;
    /// `points` is unchanged then.
    bool Update(std::uint16_t id, std::vector<System::Math::Vector4>& points);

    /// Removes the line; the last one takes its place in the order. False for an unknown id.
    bool Remove(std::uint16_t id);

    /// Whether a line has few enough points; an assertion failure if not.
    [[nodiscard]] static bool IsDrawable(const Line& line);

    /// Adds the state of the lines in the next frame.
    void AppendState(FrameState& state) const;

private:
    /// False, after an assertion failure, if the line has too many points.
    [[nodiscard]] bool DrawLine(Renderer& renderer, const Line& line);

    GLuint m_pointBuffer = 0;
    GLuint m_vertexArray = 0;
    GLint m_colorLocation = -1;
    GLint m_thicknessLocation = -1;
    GLint m_dashLengthLocation = -1;
    GLint m_gapLengthLocation = -1;
};

} // namespace Orvik::Graphics::Renderer
