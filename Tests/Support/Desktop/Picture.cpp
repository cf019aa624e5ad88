#include "Tests/Support/Desktop/Picture.h"

#include <png.h>
#include <stdexcept>

namespace Orvik::Tests
{
namespace
{

// libpng's simplified interface; in memory, its BGRA rows are little-endian 0xAARRGGBB.
png_image MakeImage()
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    return image;
}

} // namespace

std::uint32_t Picture::At(int x, int y) const
{
    return pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x));
}

Picture Picture::Crop(const Area& area) const
{
    Picture part{area.width, area.height, {}};
    for (int y = 0; y < area.height; ++y)
        for (int x = 0; x < area.width; ++x)
            part.pixels.push_back(At(area.x + x, area.y + y));
    return part;
}

Picture Picture::Turned() const
{
    Picture turned{height, width, {}};
    for (int y = 0; y < turned.height; ++y)
        for (int x = 0; x < turned.width; ++x)
            turned.pixels.push_back(At(width - 1 - y, x));
    return turned;
}

Picture MakeTestPicture(int width, int height, int seed)
{
    Picture picture{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
        {
            const int red = (x + 13 * y + 31 * seed) % 101;
            const int green = (7 * x + 3 * y + 17 * seed) % 97;
            const int blue = (x / 97 * 11 + y / 89 * 5 + seed) % 89;
            picture.pixels.push_back(0xFF000000U | static_cast<std::uint32_t>(red << 16 | green << 8 | blue));
        }
    return picture;
}

Picture LoadPng(const std::filesystem::path& file)
{
    png_image image = MakeImage();
    if (png_image_begin_read_from_file(&image, file.c_str()) == 0)
        throw std::runtime_error("No PNG file: " + file.string());
    image.format = PNG_FORMAT_BGRA;
    Picture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    picture.pixels.resize(static_cast<std::size_t>(image.width) * image.height);
    if (png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr) == 0)
        throw std::runtime_error("Not a whole PNG file: " + file.string());
    return picture;
}

void SavePng(const Picture& picture, const std::filesystem::path& file)
{
    png_image image = MakeImage();
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_BGRA;
    image.flags = PNG_IMAGE_FLAG_FAST;
    if (png_image_write_to_file(&image, file.c_str(), 0, picture.pixels.data(), 0, nullptr) == 0)
        throw std::runtime_error("Can't be written: " + file.string());
}

} // namespace Orvik::Tests
