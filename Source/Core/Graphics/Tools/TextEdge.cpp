#include "Core/Graphics/Tools/TextEdge.h"

#include "Core/Graphics/Tools/ToolObjects.h"

#include <cstddef>

namespace Orvik::Graphics::Tools
{
namespace
{

struct Offset
{
    float x;
    float y;
};

constexpr std::array<Offset, 4> s_offsets = {{{-1.0F, -1.0F}, {1.0F, -1.0F}, {-1.0F, 1.0F}, {1.0F, 1.0F}}};

} // namespace

void TextEdge::Create(const char* text, Renderer::Renderer& renderer)
{
    for (std::uint16_t& id : m_ids)
    {
        if (id == 0)
            renderer.GetTextRenderer().Create(id, text, renderer);
    }
}

void TextEdge::SetText(const char* text, Renderer::Renderer& renderer) const
{
    for (const std::uint16_t id : m_ids)
        renderer.GetTextRenderer().SetText(id, text, renderer);
}

void TextEdge::Surround(const Renderer::Text& text, Renderer::TextRenderer& renderer) const
{
    constexpr std::size_t column = 12;
    for (std::size_t index = 0; index < m_ids.size(); ++index)
    {
        Renderer::Text* const edge = renderer.Get(m_ids[index]);
        if (edge == nullptr)
            continue;
        System::Math::Matrix4 model = text.model;
        model.elements[column] += s_offsets[index].x;
        model.elements[column + 1] += s_offsets[index].y;
        Place(edge, model, s_black);
        edge->visible = text.visible;
    }
}

void TextEdge::Hide(Renderer::TextRenderer& renderer) const
{
    for (const std::uint16_t id : m_ids)
    {
        if (Renderer::Text* const edge = renderer.Get(id))
            edge->visible = false;
    }
}

void TextEdge::Remove(Renderer::TextRenderer& renderer)
{
    for (std::uint16_t& id : m_ids)
        RemoveObject(renderer, id);
}

} // namespace Orvik::Graphics::Tools
