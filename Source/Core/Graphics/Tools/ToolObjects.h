#pragma once

#include "Core/Graphics/Renderer/LineRenderer.h"
#include "Core/System/Types/Matrix4.h"

#include <cstdint>
#include <vector>

/// Functions that the tool's units share for their render objects. An id of 0 means no object.
namespace Orvik::Graphics::Tools
{

inline constexpr System::Math::Vector4 s_white = {1.0F, 1.0F, 1.0F, 1.0F};
inline constexpr System::Math::Vector4 s_black = {0.0F, 0.0F, 0.0F, 1.0F};

template <typename ObjectRenderer>
void RemoveObject(ObjectRenderer& renderer, std::uint16_t& id)
{
    if (id == 0)
        return;
    renderer.Remove(id);
    id = 0;
}

/// A missing object is skipped.
template <typename Object>
void Place(Object* object, const System::Math::Matrix4& model, const System::Math::Vector4& colour)
{
    if (object == nullptr)
        return;
    object->model = model;
    object->color = colour;
}

/// Makes the line, or gives an existing one other points.
inline void SetLinePoints(Renderer::LineRenderer& renderer, std::uint16_t& id, const System::Math::Vector4& first,
                          const System::Math::Vector4& second)
{
    std::vector<System::Math::Vector4> points = {first, second};
    if (id == 0)
        renderer.Create(id, points);
    else
        renderer.Update(id, points);
}

} // namespace Orvik::Graphics::Tools
