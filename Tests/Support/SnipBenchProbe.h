#pragma once

#include "Core/Graphics/Tools/SnipBench.h"

#include <array>
#include <vector>

namespace Orvik::Graphics::Tools
{

/// Reads and sets what the tool keeps to itself.
class SnipBenchProbe
{
public:
    explicit SnipBenchProbe(SnipBench& tool) : m_tool(tool) {}

    struct Rectangle
    {
        int anchorX, anchorY, x, y, width, height;
        bool operator==(const Rectangle&) const = default;
    };

    [[nodiscard]] System::Math::Point GetCursor() const { return {m_tool.m_cursorX, m_tool.m_cursorY}; }
    [[nodiscard]] System::Math::Point ToCapture(std::int32_t x, std::int32_t y) const
    {
        return {m_tool.ToCaptureX(x), m_tool.ToCaptureY(y)};
    }
    [[nodiscard]] float GetScale() const { return m_tool.m_displayScale; }
    [[nodiscard]] int GetMagnification() const { return m_tool.m_magnification; }
    [[nodiscard]] int GetWindowWidth() const { return m_tool.m_windowWidth; }
    [[nodiscard]] int GetWindowHeight() const { return m_tool.m_windowHeight; }
    [[nodiscard]] int GetRegionWidth() const { return m_tool.m_regionWidth; }
    [[nodiscard]] int GetRegionHeight() const { return m_tool.m_regionHeight; }
    [[nodiscard]] int GetControlFlag() const { return m_tool.m_controlFlag; }
    [[nodiscard]] std::int64_t GetStartTime() const { return m_tool.m_startTime; }
    [[nodiscard]] System::Multimedia::Bitmap& GetCapture() { return m_tool.m_capture; }
    [[nodiscard]] Rectangle GetRectangle() const
    {
        const auto& data = m_tool.m_rectangleModeData;
        return {data.anchorX, data.anchorY, data.x, data.y, data.width, data.height};
    }
    [[nodiscard]] const std::vector<System::Math::Point>& GetPoints() const { return m_tool.m_polygonModeData.points; }
    [[nodiscard]] std::vector<System::Math::Point> CloseRing() { return m_tool.CloseRing({}); }

    [[nodiscard]] std::uint16_t GetCaptureTexture() const { return m_tool.m_captureTexture; }
    [[nodiscard]] std::uint16_t GetMagnifierTexture() const { return m_tool.m_magnifierTexture; }
    [[nodiscard]] std::array<std::uint16_t, 2> GetDividers() const { return m_tool.m_magnifierDividers; }
    [[nodiscard]] std::array<std::uint16_t, 2> GetCrosshair() const { return m_tool.m_crosshairLines; }
    [[nodiscard]] std::uint16_t GetZoomLabel() const { return m_tool.m_magnificationLabel; }
    [[nodiscard]] std::uint16_t GetCoordinatesLabel() const { return m_tool.m_coordinatesLabel; }
    [[nodiscard]] std::uint16_t GetSelectionLine() const { return m_tool.m_selectionLine; }
    [[nodiscard]] std::uint16_t& GetSizeLabel() { return m_tool.m_sizeLabel; }

    void UpdateMagnifier(Renderer::Renderer& renderer) { m_tool.UpdateMagnifier(renderer); }

    /// Every id of a render object.
    [[nodiscard]] std::vector<std::uint16_t> GetIds() const
    {
        return {m_tool.m_captureTexture,       m_tool.m_magnifierTexture,   m_tool.m_magnifierDividers[0],
                m_tool.m_magnifierDividers[1], m_tool.m_magnificationLabel, m_tool.m_crosshairLines[0],
                m_tool.m_crosshairLines[1],    m_tool.m_coordinatesLabel,   m_tool.m_selectionLine};
    }

private:
    SnipBench& m_tool;
};

} // namespace Orvik::Graphics::Tools
