#include "Core/System/Multimedia/Image.h"

#include "Core/System/Error/Assertion.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <vector>

namespace Orvik::System::Utilities::Image
{
namespace
{

// Offsets are counted in 64 bits: two sides of 65,535 pixels already exceed 32.
struct Pictures
{
    std::uint8_t* target;
    const std::uint8_t* source;
    std::int64_t sourceWidth;
    std::int64_t sourceHeight;
    std::int64_t targetWidth;
    std::int64_t targetHeight;
    std::int64_t channels;

    [[nodiscard]] std::uint8_t* GetTarget(std::int64_t x, std::int64_t y) const
    {
        return target + (y * targetWidth + x) * channels;
    }
    [[nodiscard]] const std::uint8_t* GetSource(std::int64_t x, std::int64_t y) const
    {
        return source + (y * sourceWidth + x) * channels;
    }
    [[nodiscard]] float GetRatioX() const { return static_cast<float>(sourceWidth) / static_cast<float>(targetWidth); }
    [[nodiscard]] float GetRatioY() const
    {
        return static_cast<float>(sourceHeight) / static_cast<float>(targetHeight);
    }
};

// A float is less exact than the greatest sizes; rounding mustn't lead beyond the last pixel.
std::int64_t Truncate(float position, std::int64_t count)
{
    return std::min(static_cast<std::int64_t>(position), count - 1);
}

void ScaleNearest(const Pictures& pictures)
{
    const float ratioX = pictures.GetRatioX();
    const float ratioY = pictures.GetRatioY();
    const auto pixelBytes = static_cast<std::size_t>(pictures.channels);
    for (std::int64_t y = 0; y < pictures.targetHeight; ++y)
    {
        const std::int64_t sourceY = Truncate(static_cast<float>(y) * ratioY, pictures.sourceHeight);
        for (std::int64_t x = 0; x < pictures.targetWidth; ++x)
        {
            const std::int64_t sourceX = Truncate(static_cast<float>(x) * ratioX, pictures.sourceWidth);
            std::memcpy(pictures.GetTarget(x, y), pictures.GetSource(sourceX, sourceY), pixelBytes);
        }
    }
}

// The two neighbours of a position on one axis; `fraction` is the weight of the second.
struct Neighbours
{
    std::int64_t first;
    std::int64_t second;
    float fraction;
};

Neighbours FindNeighbours(std::int64_t targetIndex, float ratio, std::int64_t count)
{
    const float position = std::max((static_cast<float>(targetIndex) + 0.5f) * ratio - 0.5f, 0.0f);
    const std::int64_t first = Truncate(position, count);
    const float whole = static_cast<float>(static_cast<std::int64_t>(position));
    return {first, std::min(first + 1, count - 1), position - whole};
}

// The order of the terms changes the result: the sum is one of 32-bit floats, and it is truncated.
void MixPixel(const Pictures& pictures, std::uint8_t* target, const Neighbours& x, const Neighbours& y)
{
    const std::uint8_t* topLeft = pictures.GetSource(x.first, y.first);
    const std::uint8_t* topRight = pictures.GetSource(x.second, y.first);
    const std::uint8_t* bottomLeft = pictures.GetSource(x.first, y.second);
    const std::uint8_t* bottomRight = pictures.GetSource(x.second, y.second);
    for (std::int64_t channel = 0; channel < pictures.channels; ++channel)
    {
        const float value = static_cast<float>(topRight[channel]) * (1.0f - y.fraction) * x.fraction +
                            static_cast<float>(topLeft[channel]) * (1.0f - x.fraction) * (1.0f - y.fraction) +
                            static_cast<float>(bottomLeft[channel]) * (1.0f - x.fraction) * y.fraction +
                            static_cast<float>(bottomRight[channel]) * x.fraction * y.fraction;
        target[channel] = static_cast<std::uint8_t>(value);
    }
}

void ScaleBilinear(const Pictures& pictures)
{
    const float ratioX = pictures.GetRatioX();
    const float ratioY = pictures.GetRatioY();
    for (std::int64_t y = 0; y < pictures.targetHeight; ++y)
    {
        const Neighbours rows = FindNeighbours(y, ratioY, pictures.sourceHeight);
        for (std::int64_t x = 0; x < pictures.targetWidth; ++x)
        {
            const Neighbours columns = FindNeighbours(x, ratioX, pictures.sourceWidth);
            MixPixel(pictures, pictures.GetTarget(x, y), columns, rows);
        }
    }
}

// The source indices that one target index covers on one axis, at least one.
struct Range
{
    std::int64_t begin;
    std::int64_t end;
};

Range FindRange(std::int64_t targetIndex, std::int64_t sourceCount, std::int64_t targetCount)
{
    const std::int64_t begin = targetIndex * sourceCount / targetCount;
    return {begin, std::max((targetIndex + 1) * sourceCount / targetCount, begin + 1)};
}

void AverageBlock(const Pictures& pictures, std::uint8_t* target, const Range& columns, const Range& rows)
{
    // 255 bits per pixel are 31 channels. Only the used ones are cleared, because most blocks have only a few pixels.
    std::array<std::uint32_t, 32> sums;
    std::fill_n(sums.begin(), pictures.channels, 0U);
    for (std::int64_t y = rows.begin; y < rows.end; ++y)
    {
        const std::uint8_t* pixel = pictures.GetSource(columns.begin, y);
        for (std::int64_t x = columns.begin; x < columns.end; ++x, pixel += pictures.channels)
        {
            for (std::int64_t channel = 0; channel < pictures.channels; ++channel)
                sums[static_cast<std::size_t>(channel)] += pixel[channel];
        }
    }
    const auto pixelCount = static_cast<std::uint64_t>((columns.end - columns.begin) * (rows.end - rows.begin));
    for (std::int64_t channel = 0; channel < pictures.channels; ++channel)
        target[channel] = static_cast<std::uint8_t>(sums[static_cast<std::size_t>(channel)] / pixelCount);
}

void ScaleBox(const Pictures& pictures)
{
    // Every row has the same. Computed once, because two divisions per pixel take longer than adding up its block.
    std::vector<Range> columns;
    columns.reserve(static_cast<std::size_t>(pictures.targetWidth));
    for (std::int64_t x = 0; x < pictures.targetWidth; ++x)
        columns.push_back(FindRange(x, pictures.sourceWidth, pictures.targetWidth));

    for (std::int64_t y = 0; y < pictures.targetHeight; ++y)
    {
        const Range rows = FindRange(y, pictures.sourceHeight, pictures.targetHeight);
        std::uint8_t* target = pictures.GetTarget(0, y);
        for (const Range& block : columns)
        {
            AverageBlock(pictures, target, block, rows);
            target += pictures.channels;
        }
    }
}

} // namespace

void Resize(std::uint8_t* target, const std::uint8_t* source, std::int32_t sourceWidth, std::int32_t sourceHeight,
            std::int32_t targetWidth, std::int32_t targetHeight, std::uint8_t bitsPerPixel, ResizeMethod method)
{
    const std::int64_t channels = bitsPerPixel >> 3;
    const bool hasTarget = targetHeight > 0 && targetWidth > 0;
    const bool hasSource = sourceWidth > 0 && sourceHeight > 0;
    if (!hasTarget || !hasSource || channels == 0)
        return;

    const Pictures pictures{target, source, sourceWidth, sourceHeight, targetWidth, targetHeight, channels};
    switch (method)
    {
    case ResizeMethod::Nearest:
        ScaleNearest(pictures);
        return;
    case ResizeMethod::Bilinear:
        ScaleBilinear(pictures);
        return;
    case ResizeMethod::Box:
        ScaleBox(pictures);
        return;
    }
    ORVIK_ASSERT(false, "Implementation is missing.");
}

} // namespace Orvik::System::Utilities::Image
