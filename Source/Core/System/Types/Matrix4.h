#pragma once

#include <array>
#include <cstddef>

namespace Orvik::System::Math
{

/// Four floats: a position, a colour (red, green, blue, alpha), a line's point.
struct Vector4
{
    float x = 0.0F;
    float y = 0.0F;
    float z = 0.0F;
    float w = 0.0F;

    constexpr bool operator==(const Vector4&) const = default;
};

/// A 4 by 4 matrix of floats in column-major order, as OpenGL expects it: element 12 is the translation in x.
struct Matrix4
{
    std::array<float, 16> elements = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}; ///< the identity at first

    constexpr bool operator==(const Matrix4&) const = default;

    [[nodiscard]] static constexpr Matrix4 Translation(float x, float y, float z) noexcept
    {
        return ScaleAndTranslation(1.0F, 1.0F, 1.0F, x, y, z);
    }

    /// Scales first, then moves.
    [[nodiscard]] static constexpr Matrix4 ScaleAndTranslation(float scaleX, float scaleY, float scaleZ, float x,
                                                               float y, float z) noexcept
    {
        return Matrix4{{scaleX, 0, 0, 0, 0, scaleY, 0, 0, 0, 0, scaleZ, 0, x, y, z, 1}};
    }

    /// Moves every point to the origin: everything is 0 except the last element. An object with this placement is
    /// invisible.
    [[nodiscard]] static constexpr Matrix4 Collapse() noexcept
    {
        return ScaleAndTranslation(0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F);
    }

    /// An orthographic projection with the origin at the bottom left corner, y upward, and z from -10 to 10; a greater
    /// z is nearer to the viewer. Width and height are in pixels and not 0.
    [[nodiscard]] static constexpr Matrix4 Orthographic(float width, float height) noexcept
    {
        return ScaleAndTranslation(2.0F / width, 2.0F / height, -0.1F, -1.0F, -1.0F, 0.0F);
    }

    [[nodiscard]] constexpr Matrix4 operator*(const Matrix4& right) const noexcept
    {
        Matrix4 product;
        for (std::size_t column = 0; column < 4; ++column)
        {
            for (std::size_t row = 0; row < 4; ++row)
            {
                float sum = 0.0F;
                for (std::size_t index = 0; index < 4; ++index)
                    sum += elements[index * 4 + row] * right.elements[column * 4 + index];
                product.elements[column * 4 + row] = sum;
            }
        }
        return product;
    }
};

} // namespace Orvik::System::Math
