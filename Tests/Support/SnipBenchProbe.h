#pragma once

#include "Core/Graphics/Tools/SnipBench.h"

#include <array>
#include <vector>

namespace Orvik::Graphics::Tools
{

/// A tool that shows its private values.
class SnipBenchProbe : public SnipBench
{
public:
    using SnipBench::CloseRing;
    using SnipBench::Setup;
    using SnipBench::UpdateMagnifier;

    [[nodiscard]] System::Math::Point ToCapture(std::int32_t x, std::int32_t y) const
    {
        return {ToCaptureX(GetView(), x), ToCaptureY(GetView(), y)};
    }
    [[nodiscard]] float GetScale() const { return m_displayScale; }
    [[nodiscard]] int GetMagnification() const { return m_magnification; }
    [[nodiscard]] int GetWindowWidth() const { return m_windowWidth; }
    [[nodiscard]] int GetWindowHeight() const { return m_windowHeight; }
    [[nodiscard]] int GetRegionWidth() const { return m_regionWidth; }
    [[nodiscard]] int GetRegionHeight() const { return m_regionHeight; }
    [[nodiscard]] bool IsCropping() const { return m_cropToSelection; }
    [[nodiscard]] int GetControlFlag() const { return m_controlFlag; }
    [[nodiscard]] std::int64_t GetStartTime() const { return m_startTime; }
    [[nodiscard]] System::Multimedia::Bitmap& GetCapture() { return m_capture; }
    [[nodiscard]] const RectangleModeData& GetRectangle() const { return m_rectangleModeData; }
    [[nodiscard]] const std::vector<System::Math::Point>& GetPoints() const { return m_polygonModeData.points; }

    [[nodiscard]] std::uint16_t GetCaptureTexture() const { return m_captureTexture.GetId(); }
    [[nodiscard]] std::uint16_t GetMagnifierTexture() const { return m_magnifierTexture.GetId(); }
    [[nodiscard]] std::array<std::uint16_t, 2> GetDividers() const { return m_magnifierDividers.GetIds(); }
    [[nodiscard]] std::array<std::uint16_t, 2> GetCrosshair() const { return m_crosshairLines.GetIds(); }
    [[nodiscard]] std::uint16_t GetZoomLabel() const { return m_magnificationLabel.GetId(); }
    [[nodiscard]] std::uint16_t GetCoordinatesLabel() const { return m_coordinatesLabel.GetId(); }
    [[nodiscard]] std::uint16_t GetSelectionLine() const { return m_selectionLine.GetId(); }
    [[nodiscard]] MagnifierLabel& GetSizeLabel() { return m_aids.GetSizeLabel(); }
    [[nodiscard]] SnipAids& GetAids() { return m_aids; }

    /// Every id of a render object.
    [[nodiscard]] std::vector<std::uint16_t> GetIds() const
    {
        return {GetCaptureTexture(), GetMagnifierTexture(), GetDividers()[0],      GetDividers()[1],  GetZoomLabel(),
                GetCrosshair()[0],   GetCrosshair()[1],     GetCoordinatesLabel(), GetSelectionLine()};
    }
};

} // namespace Orvik::Graphics::Tools
