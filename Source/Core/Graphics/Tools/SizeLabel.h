#pragma once

#include "Core/Graphics/Tools/Magnifier.h"
#include "Core/Graphics/Tools/ShownSelection.h"

namespace Orvik::Graphics::Tools
{

/// Width and height of the selection that grows, beside its outline. Owns its text object.
class SizeLabel : public MagnifierLabel
{
public:
    /// Shows the size in capture pixels, in letters of that height: above the outline's left end; below it, or inside
    /// at its upper edge, where there is no room. It is always within the window. Does nothing if there is no text.
    void ShowBeside(const ShownSelection& selection, Size window, float letterHeight,
                    Renderer::Renderer& renderer) const;

    /// Keeps the text, but makes it invisible.
    void Hide(Renderer::TextRenderer& renderer) const { SetVisible(false, renderer); }
};

} // namespace Orvik::Graphics::Tools
