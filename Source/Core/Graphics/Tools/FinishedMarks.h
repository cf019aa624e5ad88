#pragma once

#include "Core/Graphics/Renderer/LineRenderer.h"
#include "Core/Graphics/Tools/ShownSelection.h"

#include <cstdint>
#include <vector>

namespace Orvik::Graphics::Tools
{

/// The outlines of selections that are done, oldest first. Owns their lines.
class FinishedMarks
{
public:
    /// Adds one: around a rectangle, or through a polygon's corners.
    void Add(const ShownSelection& selection, const System::Math::Vector4& colour, Size window,
             Renderer::LineRenderer& renderer);

    /// Removes the one that was added last, if there is one.
    void RemoveLast(Renderer::LineRenderer& renderer);

    void Clear(Renderer::LineRenderer& renderer);

    [[nodiscard]] const std::vector<std::uint16_t>& GetIds() const { return m_ids; }

private:
    std::vector<std::uint16_t> m_ids;
};

} // namespace Orvik::Graphics::Tools
