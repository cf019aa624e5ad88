#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace Orvik::Tests
{

/// A position on a screen or in a picture: pixels, y downward.
struct Position
{
    int x = 0;
    int y = 0;

    [[nodiscard]] bool operator==(const Position&) const = default;
};

/// A part of a screen or a picture: its top left pixel and its size.
struct Area
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// An image in the form that tests compare: rows top-down, a pixel is 0xAARRGGBB.
struct Picture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    [[nodiscard]] bool operator==(const Picture&) const = default;
    [[nodiscard]] std::uint32_t At(int x, int y) const;
    /// The area must be inside of the picture.
    [[nodiscard]] Picture Crop(const Area& area) const;
    /// The picture turned by a quarter, counter-clockwise.
    [[nodiscard]] Picture Turned() const;
};

/// A picture in which every region differs from its neighbours and no channel is above 100, so that the overlay's white
/// lines are visible even where they fade. Each `seed` gives another picture.
[[nodiscard]] Picture MakeTestPicture(int width, int height, int seed = 0);

/// Both throw `std::runtime_error` if the file isn't a PNG file or can't be written.
[[nodiscard]] Picture LoadPng(const std::filesystem::path& file);
void SavePng(const Picture& picture, const std::filesystem::path& file);

} // namespace Orvik::Tests
