#include "Tests/Support/SamplePictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <stdexcept>
#include <utility>

namespace Orvik::Tests
{
namespace
{

using System::Multimedia::Bitmap;

/// Of the sensor, in 16ths of 1/256.
constexpr std::int32_t s_grain = 16;

struct Colour
{
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

/// The same numbers with every library.
class Random
{
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}

    /// Below `limit`.
    std::uint32_t Draw(std::uint32_t limit)
    {
        m_state = m_state * 6'364'136'223'846'793'005U + 1'442'695'040'888'963'407U;
        return static_cast<std::uint32_t>((m_state >> 33) % limit);
    }

private:
    std::uint64_t m_state;
};

/// A number for a place, 0 to 255, that has nothing to do with its neighbours'.
std::uint32_t Hash(std::uint32_t x, std::uint32_t y, std::uint32_t seed)
{
    std::uint32_t value = x * 0x9E3779B1U ^ y * 0x85EBCA77U ^ seed * 0xC2B2AE3DU;
    value = (value ^ value >> 15) * 0x2C1B3C6DU;
    value = (value ^ value >> 12) * 0x297A2D39U;
    return (value ^ value >> 15) & 0xFF;
}

/// Hashes of places `cell` apart, and between them what lies between, 0 to 255.
std::uint32_t GetSmooth(std::uint32_t x, std::uint32_t y, std::uint32_t cell, std::uint32_t seed)
{
    const std::uint32_t column = x / cell;
    const std::uint32_t row = y / cell;
    const std::uint32_t right = x % cell;
    const std::uint32_t down = y % cell;
    const std::uint32_t top = Hash(column, row, seed) * (cell - right) + Hash(column + 1, row, seed) * right;
    const std::uint32_t bottom = Hash(column, row + 1, seed) * (cell - right) + Hash(column + 1, row + 1, seed) * right;
    return (top * (cell - down) + bottom * down) / (cell * cell);
}

Colour Mix(Colour first, Colour second, std::uint32_t share)
{
    const auto mix = [share](std::uint32_t from, std::uint32_t to)
    { return static_cast<std::uint8_t>((from * (255 - share) + to * share) / 255); };
    return {mix(first.red, second.red), mix(first.green, second.green), mix(first.blue, second.blue)};
}

void SetPixel(Bitmap& bitmap, std::uint32_t x, std::uint32_t y, Colour colour)
{
    if (x >= bitmap.GetWidth() || y >= bitmap.GetHeight())
        return;
    std::uint8_t* const pixel = bitmap.GetPixels() + std::size_t{y} * bitmap.GetStride() + std::size_t{x} * 4;
    pixel[0] = colour.blue;
    pixel[1] = colour.green;
    pixel[2] = colour.red;
    pixel[3] = 255;
}

void Fill(Bitmap& bitmap, std::uint32_t left, std::uint32_t top, std::uint32_t width, std::uint32_t height,
          Colour colour)
{
    for (std::uint32_t y = top; y < top + height; ++y)
    {
        for (std::uint32_t x = left; x < left + width; ++x)
            SetPixel(bitmap, x, y, colour);
    }
}

/// Each pixel from its place.
Bitmap MakeByPlace(std::uint16_t width, std::uint16_t height,
                   const std::function<Colour(std::uint32_t x, std::uint32_t y)>& getColour)
{
    Bitmap bitmap(width, height, 32);
    for (std::uint32_t y = 0; y < height; ++y)
    {
        for (std::uint32_t x = 0; x < width; ++x)
            SetPixel(bitmap, x, y, getColour(x, y));
    }
    return bitmap;
}

/// The coverage of a letter's pixels: a few strokes with soft edges.
constexpr std::uint32_t s_letterWidth = 8;
constexpr std::uint32_t s_letterHeight = 14;
using Letter = std::array<std::array<std::uint8_t, s_letterWidth>, s_letterHeight>;

Letter MakeLetter(Random& random)
{
    Letter letter = {};
    const std::uint32_t strokes = 2 + random.Draw(3);
    for (std::uint32_t stroke = 0; stroke < strokes; ++stroke)
    {
        double x = 1 + random.Draw(6);
        double y = 2 + random.Draw(10);
        const double angle = random.Draw(8) * 0.785398;
        for (int step = 0; step < 14; ++step)
        {
            const auto column = static_cast<std::uint32_t>(x);
            const auto row = static_cast<std::uint32_t>(y);
            if (x < 1 || y < 1 || column + 1 >= s_letterWidth || row + 1 >= s_letterHeight)
                break;
            const auto soft = static_cast<std::uint8_t>((x - column) * 255);
            letter[row][column] = std::max<std::uint8_t>(letter[row][column], 255 - soft / 2);
            letter[row][column + 1] = std::max(letter[row][column + 1], soft);
            x += std::cos(angle) * 0.8;
            y += std::sin(angle) * 0.8;
        }
    }
    return letter;
}

std::vector<Letter> MakeAlphabet(Random& random)
{
    std::vector<Letter> alphabet;
    for (int letter = 0; letter < 60; ++letter)
        alphabet.push_back(MakeLetter(random));
    return alphabet;
}

void DrawLetter(Bitmap& bitmap, std::uint32_t left, std::uint32_t top, const Letter& letter, Colour ink, Colour paper)
{
    for (std::uint32_t y = 0; y < s_letterHeight; ++y)
    {
        for (std::uint32_t x = 0; x < s_letterWidth; ++x)
            SetPixel(bitmap, left + x, top + y, Mix(paper, ink, letter[y][x]));
    }
}

/// Words of letters in lines and paragraphs.
void DrawText(Bitmap& bitmap, std::uint32_t left, std::uint32_t top, std::uint32_t right, std::uint32_t bottom,
              Colour ink, Colour paper, Random& random)
{
    const std::vector<Letter> alphabet = MakeAlphabet(random);
    const auto letters = static_cast<std::uint32_t>(alphabet.size());
    for (std::uint32_t y = top; y + s_letterHeight < bottom; y += random.Draw(8) == 0 ? 38 : 19)
    {
        const std::uint32_t end = right - random.Draw((right - left) / 3 + 1);
        std::uint32_t wordLetters = 1 + random.Draw(9);
        for (std::uint32_t x = left; x + s_letterWidth < end; x += s_letterWidth)
        {
            if (wordLetters-- == 0)
                wordLetters = 1 + random.Draw(9);
            else // the common letters come more often
                DrawLetter(bitmap, x, y, alphabet[random.Draw(letters) * random.Draw(letters) / letters], ink, paper);
        }
    }
}

Bitmap MakeText(std::uint16_t width, std::uint16_t height)
{
    constexpr Colour paper = {253, 253, 250};
    Random random(7);
    Bitmap bitmap(width, height, 32);
    Fill(bitmap, 0, 0, width, height, paper);
    DrawText(bitmap, 20, 20, std::max<std::uint32_t>(width, 60) - 20, height, {34, 34, 34}, paper, random);
    return bitmap;
}

/// Windows of flat colours with frames, rows of buttons and some text.
Bitmap MakeInterface(std::uint16_t width, std::uint16_t height)
{
    Random random(11);
    Bitmap bitmap(width, height, 32);
    Fill(bitmap, 0, 0, width, height, {46, 52, 64});
    const std::uint32_t windows = 4 + std::uint32_t{width} * height / 400'000;
    for (std::uint32_t window = 0; window < windows; ++window)
    {
        const std::uint32_t left = random.Draw(std::max<std::uint32_t>(width, 2) * 3 / 4);
        const std::uint32_t top = random.Draw(std::max<std::uint32_t>(height, 2) * 3 / 4);
        const std::uint32_t across = 120 + random.Draw(std::max<std::uint32_t>(width / 2, 1));
        const std::uint32_t down = 120 + random.Draw(std::max<std::uint32_t>(height / 2, 1));
        const auto gray = static_cast<std::uint8_t>(225 + random.Draw(30));
        const Colour paper = {gray, gray, gray};
        Fill(bitmap, left, top, across, down, {30, 30, 30});
        Fill(bitmap, left + 1, top + 1, across - 2, 28, {94, 129, 172});
        Fill(bitmap, left + 1, top + 29, across - 2, down - 30, paper);
        for (std::uint32_t button = left + 10; button + 80 < left + across; button += 90)
            Fill(bitmap, button, top + 40, 80, 24, {200, 208, 220});
        DrawText(bitmap, left + 10, top + 80, left + across - 10, top + 80 + down / 3, {20, 20, 20}, paper, random);
    }
    return bitmap;
}

Bitmap MakeNoise(std::uint16_t width, std::uint16_t height)
{
    const auto draw = [](std::uint32_t x, std::uint32_t y, std::uint32_t seed)
    { return static_cast<std::uint8_t>(Hash(x, y, seed)); };
    return MakeByPlace(width, height,
                       [draw](std::uint32_t x, std::uint32_t y) {
                           return Colour{draw(x, y, 1), draw(x, y, 2), draw(x, y, 3)};
                       });
}

Bitmap MakeGradient(std::uint16_t width, std::uint16_t height)
{
    return MakeByPlace(width, height,
                       [width, height](std::uint32_t x, std::uint32_t y)
                       {
                           const Colour top = Mix({32, 74, 135}, {200, 60, 120}, x * 255 / width);
                           return Mix(top, {245, 121, 0}, y * 255 / height);
                       });
}

/// Clouds of one colour, in 256ths: shapes of all sizes, the smaller the fainter.
std::int32_t GetCloud(std::uint32_t x, std::uint32_t y, std::uint32_t channel)
{
    std::uint32_t light = 0;
    for (std::uint32_t octave = 0; octave < 6; ++octave)
        light += GetSmooth(x, y, 256U >> octave, 16 * channel + octave) * (128U >> octave);
    return static_cast<std::int32_t>(light);
}

/// What a sensor adds to a channel of a place, in 256ths: near to a normal distribution.
std::int32_t GetGrain(std::uint32_t x, std::uint32_t y, std::uint32_t channel)
{
    std::int32_t grain = -510;
    for (std::uint32_t part = 0; part < 4; ++part)
        grain += static_cast<std::int32_t>(Hash(x, y, 8 * channel + part));
    return grain * s_grain / 16;
}

/// Coloured clouds before a sky, with a sensor's grain.
Bitmap MakeClouds(std::uint16_t width, std::uint16_t height)
{
    return MakeByPlace(width, height,
                       [height](std::uint32_t x, std::uint32_t y)
                       {
                           const Colour sky = Mix({32, 74, 135}, {245, 121, 0}, y * 255 / height);
                           const auto expose = [x, y](std::uint32_t light, std::uint32_t channel)
                           {
                               const std::int32_t clouded = static_cast<std::int32_t>(light * 141) +
                                                            GetCloud(x, y, channel) * 115 / 256 +
                                                            GetGrain(x, y, channel);
                               return static_cast<std::uint8_t>(std::clamp(clouded / 256, 0, 255));
                           };
                           return Colour{expose(sky.red, 1), expose(sky.green, 2), expose(sky.blue, 3)};
                       });
}

/// A photograph as a desktop's background, with a page of text on it.
Bitmap MakePhoto(std::uint16_t width, std::uint16_t height)
{
    Random random(5);
    Bitmap bitmap = MakeClouds(width, height);
    for (const Colour paper : {Colour{253, 253, 253}, Colour{30, 30, 46}, Colour{245, 245, 220}})
    {
        const std::uint32_t left = random.Draw(width * 2U / 3);
        const std::uint32_t top = random.Draw(height * 2U / 3);
        const Colour ink = paper.red > 128 ? Colour{34, 34, 34} : Colour{208, 208, 224};
        Fill(bitmap, left, top, width * 7U / 24, height * 7U / 24, paper);
        DrawText(bitmap, left + 10, top + 10, left + width * 7U / 24, top + height * 7U / 24, ink, paper, random);
    }
    return bitmap;
}

using Maker = Bitmap (*)(std::uint16_t width, std::uint16_t height);

constexpr std::array<std::pair<const char*, Maker>, 5> s_makers = {{{"photo", &MakePhoto},
                                                                    {"text", &MakeText},
                                                                    {"interface", &MakeInterface},
                                                                    {"noise", &MakeNoise},
                                                                    {"gradient", &MakeGradient}}};

} // namespace

std::vector<SamplePicture> MakeSamplePictures(std::uint16_t width, std::uint16_t height)
{
    std::vector<SamplePicture> pictures;
    for (const auto& [name, make] : s_makers)
        pictures.push_back({name, make(width, height)});
    return pictures;
}

Bitmap MakeSamplePicture(const std::string& name, std::uint16_t width, std::uint16_t height)
{
    for (const auto& [maker, make] : s_makers)
    {
        if (name == maker)
            return make(width, height);
    }
    throw std::invalid_argument(name);
}

} // namespace Orvik::Tests
