#include "Core/System/Types/Matrix4.h"

#include <array>
#include <gtest/gtest.h>

namespace Orvik::System::Math
{
namespace
{

Vector4 Apply(const Matrix4& matrix, const Vector4& point)
{
    const auto row = [&](std::size_t index)
    {
        const auto& e = matrix.elements;
        return e[index] * point.x + e[4 + index] * point.y + e[8 + index] * point.z + e[12 + index] * point.w;
    };
    return {row(0), row(1), row(2), row(3)};
}

TEST(Matrix4, IsTheIdentityAtFirst)
{
    const std::array<float, 16> identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    EXPECT_EQ(Matrix4().elements, identity);
}

TEST(Matrix4, TranslationStandsInTheLastColumn)
{
    const std::array<float, 16> expected = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 2, 3, 4, 1};
    EXPECT_EQ(Matrix4::Translation(2, 3, 4).elements, expected);
}

TEST(Matrix4, ScalesBeforeItMoves)
{
    const Matrix4 matrix = Matrix4::ScaleAndTranslation(10, 20, 30, 1, 2, 3);
    EXPECT_EQ(Apply(matrix, {1, 1, 1, 1}), (Vector4{11, 22, 33, 1}));
}

TEST(Matrix4, CollapseSendsEverythingToTheOrigin)
{
    const std::array<float, 16> expected = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    EXPECT_EQ(Matrix4::Collapse().elements, expected);
    EXPECT_EQ(Apply(Matrix4::Collapse(), {5, -6, 7, 1}), (Vector4{0, 0, 0, 1}));
}

TEST(Matrix4, OrthographicHasItsOriginAtTheBottomLeft)
{
    const std::array<float, 16> expected = {2.0F / 1920, 0, 0, 0, 0, 2.0F / 1080, 0, 0, 0, 0, -0.1F, 0, -1, -1, 0, 1};
    EXPECT_EQ(Matrix4::Orthographic(1920, 1080).elements, expected);
    const Matrix4 matrix = Matrix4::Orthographic(100, 50);
    EXPECT_EQ(Apply(matrix, {0, 0, 0, 1}), (Vector4{-1, -1, 0, 1}));
    EXPECT_EQ(Apply(matrix, {100, 50, 10, 1}), (Vector4{1, 1, -1, 1}));
}

TEST(Matrix4, ProductAppliesTheRightOneFirst)
{
    const Matrix4 scale = Matrix4::ScaleAndTranslation(2, 2, 2, 0, 0, 0);
    const Matrix4 move = Matrix4::Translation(1, 0, 0);
    EXPECT_EQ(Apply(scale * move, {1, 1, 1, 1}), (Vector4{4, 2, 2, 1}));
    EXPECT_EQ(Apply(move * scale, {1, 1, 1, 1}), (Vector4{3, 2, 2, 1}));
}

TEST(Matrix4, ProductOfFullMatricesIsRowByColumn)
{
    const Matrix4 left{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};
    const Matrix4 right{{16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1}};
    const std::array<float, 16> expected = {386, 444, 502, 560, 274, 316, 358, 400, 162, 188, 214, 240, 50, 60, 70, 80};
    EXPECT_EQ((left * right).elements, expected);
    EXPECT_EQ(left * Matrix4(), left);
    EXPECT_EQ(Matrix4() * left, left);
}

} // namespace
} // namespace Orvik::System::Math
