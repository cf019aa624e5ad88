#pragma once

#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Tools/BrightArea.h"
#include "Core/Graphics/Tools/ContrastLines.h"
#include "Core/Graphics/Tools/FinishedMarks.h"
#include "Core/Graphics/Tools/LabelChoice.h"
#include "Core/Graphics/Tools/ShownSelection.h"
#include "Core/Graphics/Tools/SizeLabel.h"
#include "Core/Graphics/Tools/ToolSwitches.h"
#include "Core/System/Multimedia/Bitmap.h"

namespace Orvik::Graphics::Tools
{

/// What a configuration adds to the overlay: passes what happens to the units that are switched on. Owns them.
class SnipAids
{
public:
    /// Makes what is shown from the beginning, in place of what an earlier beginning made.
    void Begin(ToolSwitches switches, const SnipView& view, Renderer::Renderer& renderer);

    /// Puts what belongs to the magnifier to its new place.
    void FollowMagnifier(const MagnifierPlace& place, Size magnifier, Size window, Renderer::Renderer& renderer);

    /// The selection under way has changed.
    void ShowSelection(const ShownSelection& selection, const System::Multimedia::Bitmap& capture, const SnipView& view,
                       Renderer::Renderer& renderer);

    /// There is no selection under way.
    void HideSelection(Renderer::Renderer& renderer);

    /// A polygon has changed, or the cursor has moved.
    void FollowPolygon(const std::vector<System::Math::Point>& vertices, System::Math::Point cursor,
                       const SnipView& view, Renderer::Renderer& renderer);

    /// The selection is done.
    void Keep(const ShownSelection& selection, Size window, const System::Math::Vector4& plainColour,
              Renderer::Renderer& renderer);

    /// The last one that is done is taken back.
    void TakeBack(Renderer::Renderer& renderer);

    /// A key went down.
    void ChooseLabel(std::uint8_t key, Renderer::Renderer& renderer) { m_labels.Choose(key, renderer); }

    void End(Renderer::Renderer& renderer);

    [[nodiscard]] const ToolSwitches& GetSwitches() const { return m_switches; }
    [[nodiscard]] const std::string* GetLabel() const { return m_labels.GetName(); }
    [[nodiscard]] SizeLabel& GetSizeLabel() { return m_sizeLabel; }
    [[nodiscard]] const BrightArea& GetBrightArea() const { return m_brightArea; }
    [[nodiscard]] const FinishedMarks& GetMarks() const { return m_marks; }
    [[nodiscard]] const LabelChoice& GetLabels() const { return m_labels; }

    [[nodiscard]] const PictureFrame& GetFrame() const { return m_frame; }
    [[nodiscard]] const ClosingMark& GetClosingMark() const { return m_closingMark; }

private:
    ToolSwitches m_switches;
    PictureFrame m_frame;
    ClosingMark m_closingMark;
    SizeLabel m_sizeLabel;
    BrightArea m_brightArea;
    FinishedMarks m_marks;
    LabelChoice m_labels;
    float m_letterHeight = 0.0F; ///< of the texts at the magnifier, pixels
};

} // namespace Orvik::Graphics::Tools
