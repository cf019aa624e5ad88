#pragma once

#include "Core/Graphics/Raster/Items.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <random>
#include <variant>
#include <vector>

namespace Orvik::Tests
{

/// Makes items of all kinds for a small surface: near and far, cut by its edges, opaque or not. Some share a picture.
class RandomItems
{
public:
    RandomItems(std::int32_t width, std::int32_t height, unsigned seed)
        : m_width(width), m_height(height), m_random(seed)
    {
        for (int count = 0; count < 3; ++count)
        {
            m_images.push_back(std::make_shared<Graphics::Raster::Image>());
            Fill(*m_images.back());
            std::vector<std::uint8_t> coverage(20 * 24);
            for (std::uint8_t& byte : coverage)
                byte = static_cast<std::uint8_t>(m_random());
            m_glyphs[static_cast<std::size_t>(count)] = Graphics::Raster::Glyph(20, 24, coverage);
        }
    }

    /// A whole number from `from` to `to`.
    [[nodiscard]] int Pick(int from, int to) { return std::uniform_int_distribution(from, to)(m_random); }

    /// An item that stands before all texts in a list.
    [[nodiscard]] Graphics::Raster::Item MakeBelowText(bool isUpright)
    {
        const int kind = Pick(0, isUpright ? 1 : 2);
        if (kind == 0)
            return MakeBar();
        if (kind == 1)
            return MakePicture();
        return MakeTriangle();
    }

    [[nodiscard]] Graphics::Raster::TextItem MakeText()
    {
        Graphics::Raster::TextItem text;
        text.colour = MakeColour();
        for (int count = Pick(1, 4); count > 0; --count)
        {
            Graphics::Raster::GlyphPlace place;
            place.glyph = &m_glyphs[static_cast<std::size_t>(Pick(0, 2))];
            place.area = Intersect(MakeArea(), {0, 0, m_width, m_height});
            place.column = {PickPart(-30, 30), PickPart(-3, 3), PickPart(-3, 3)};
            place.row = {PickPart(-30, 30), PickPart(-3, 3), PickPart(-3, 3)};
            text.area = Unite(text.area, place.area);
            text.glyphs.push_back(place);
        }
        return text;
    }

    /// Gives one of the pictures other pixels, and `items` its new version.
    void ChangeImage(std::vector<Graphics::Raster::Item>& items)
    {
        const auto image = PickImage();
        Fill(*image);
        for (Graphics::Raster::Item& item : items)
        {
            if (auto* const picture = std::get_if<Graphics::Raster::PictureItem>(&item);
                picture != nullptr && picture->image == image)
                picture->version = image->GetVersion();
            if (auto* const triangle = std::get_if<Graphics::Raster::TriangleItem>(&item);
                triangle != nullptr && triangle->image == image)
                triangle->version = image->GetVersion();
        }
    }

private:
    [[nodiscard]] static std::int32_t ToPixel(float place) { return static_cast<std::int32_t>(place); }

    /// The same in 64ths.
    [[nodiscard]] float PickPart(int from, int to) { return static_cast<float>(Pick(from * 64, to * 64)) / 64.0F; }

    [[nodiscard]] System::Math::Vector4 MakeColour()
    {
        return {PickPart(0, 1), PickPart(0, 1), PickPart(0, 1), Pick(0, 2) == 0 ? PickPart(0, 1) : 1.0F};
    }

    [[nodiscard]] Graphics::Raster::Depth MakeDepth()
    {
        return Pick(0, 9) == 0 ? Graphics::Raster::s_farthest : static_cast<Graphics::Raster::Depth>(Pick(0, 4) * 1000);
    }

    /// It may go beyond the surface, and lies at least partly within it.
    [[nodiscard]] Graphics::Raster::PixelArea MakeArea()
    {
        const int left = Pick(-20, m_width - 1);
        const int top = Pick(-20, m_height - 1);
        return {left, top, std::max(left, 0) + Pick(1, 50), std::max(top, 0) + Pick(1, 50)};
    }

    [[nodiscard]] Graphics::Raster::LineLook MakeLook()
    {
        return {MakeColour(), PickPart(1, 5), Pick(0, 1) == 0 ? 0.0F : PickPart(1, 5)};
    }

    [[nodiscard]] std::shared_ptr<Graphics::Raster::Image> PickImage()
    {
        return m_images[static_cast<std::size_t>(Pick(0, 2))];
    }

    void Fill(Graphics::Raster::Image& image)
    {
        const int width = Pick(1, 60);
        const int height = Pick(1, 60);
        std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        for (std::uint32_t& pixel : pixels)
            pixel = static_cast<std::uint32_t>(m_random());
        image.Set(width, height, 4, pixels.data());
    }

    [[nodiscard]] Graphics::Raster::BarItem MakeBar()
    {
        return {MakeArea(),
                MakeDepth(),
                MakeLook(),
                {PickPart(0, 1), PickPart(0, 1) * 0.01F, PickPart(0, 1) * 0.01F},
                {PickPart(-90, 90), PickPart(-1, 1), PickPart(-1, 1)}};
    }

    [[nodiscard]] Graphics::Raster::PictureItem MakePicture()
    {
        Graphics::Raster::PictureItem picture;
        picture.area = MakeArea();
        picture.depth = MakeDepth();
        picture.colour = MakeColour();
        if (Pick(0, 1) == 0)
            picture.colour.y = picture.colour.z = picture.colour.x;
        picture.width = static_cast<float>(picture.area.GetWidth()) - static_cast<float>(Pick(0, 63)) / 64.0F;
        picture.height = static_cast<float>(picture.area.GetHeight()) - static_cast<float>(Pick(0, 63)) / 64.0F;
        picture.image = PickImage();
        picture.version = picture.image->GetVersion();
        return picture;
    }

    [[nodiscard]] Graphics::Raster::TriangleItem MakeTriangle()
    {
        Graphics::Raster::TriangleItem triangle;
        triangle.kind = static_cast<Graphics::Raster::TriangleItem::Look>(Pick(0, 2));
        triangle.look = MakeLook();
        triangle.image = PickImage();
        triangle.version = triangle.image->GetVersion();
        float left = 1.0e6F;
        float top = 1.0e6F;
        float right = -1.0e6F;
        float bottom = -1.0e6F;
        for (auto& corner : triangle.corners)
        {
            const int reach = Pick(0, 5) == 0 ? 100'000 : 30;
            corner = {PickPart(-reach, m_width + reach), PickPart(-reach, m_height + reach), MakeDepth(), MakeColour()};
            left = std::min(left, corner.x);
            top = std::min(top, corner.y);
            right = std::max(right, corner.x);
            bottom = std::max(bottom, corner.y);
        }
        triangle.area =
            Intersect(Graphics::Raster::PixelArea{ToPixel(std::floor(left)), ToPixel(std::floor(top)),
                                                  ToPixel(std::ceil(right)) + 1, ToPixel(std::ceil(bottom)) + 1},
                      {0, 0, m_width, m_height});
        return triangle;
    }

    std::int32_t m_width;
    std::int32_t m_height;
    std::mt19937 m_random;
    std::vector<std::shared_ptr<Graphics::Raster::Image>> m_images;
    std::array<Graphics::Raster::Glyph, 3> m_glyphs;
};

} // namespace Orvik::Tests
