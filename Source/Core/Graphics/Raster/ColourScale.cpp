#include "Core/Graphics/Raster/ColourScale.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Orvik::Graphics::Raster
{
namespace
{

constexpr std::uint32_t s_wholeFactor = 256;
constexpr std::uint32_t s_rounding = 128;

std::array<std::uint8_t, 256> MakeTable(float factor)
{
    std::array<std::uint8_t, 256> table = {};
    for (std::size_t value = 0; value < table.size(); ++value)
    {
        // A half goes up.
        const float scaled = std::floor(static_cast<float>(value) * factor + 0.5F);
        table[value] = static_cast<std::uint8_t>(scaled > 0.0F ? std::min(scaled, 255.0F) : 0.0F);
    }
    return table;
}

constexpr std::uint32_t ScaleByte(std::uint32_t value, std::uint32_t factor)
{
    return (value * factor + s_rounding) >> 8;
}

} // namespace

ColourScale::ColourScale(const System::Math::Vector4& colour)
    : m_tables{MakeTable(colour.z), MakeTable(colour.y), MakeTable(colour.x)}, m_alpha(ToByte(colour.w))
{
    if (!(colour.x >= 0.0F && colour.x <= 1.0F))
        return;
    m_factor = static_cast<std::uint32_t>(std::lrint(colour.x * static_cast<float>(s_wholeFactor)));
    if (!IsEven())
        m_factor = 0;
}

bool ColourScale::IsEven() const
{
    for (std::uint32_t value = 0; value <= s_channelMask; ++value)
    {
        for (const Table& table : m_tables)
        {
            if (table[value] != ScaleByte(value, m_factor))
                return false;
        }
    }
    return true;
}

PackedColour ColourScale::Apply(PackedColour colour) const
{
    return m_alpha << s_alphaShift | std::uint32_t{m_tables[2][colour >> s_redShift & s_channelMask]} << s_redShift |
           std::uint32_t{m_tables[1][colour >> s_greenShift & s_channelMask]} << s_greenShift |
           m_tables[0][colour & s_channelMask];
}

void ColourScale::Apply(const PackedColour* source, PackedColour* target, std::size_t count) const
{
    if (m_factor != 0)
    {
        ApplyEvenly(source, target, count);
        return;
    }
    for (std::size_t index = 0; index < count; ++index)
        target[index] = Apply(source[index]);
}

// Two pixels at a time, each channel in 16 bits of its own: a product of a byte and a factor up to 256 fits.
void ColourScale::ApplyEvenly(const PackedColour* source, PackedColour* target, std::size_t count) const
{
    constexpr std::uint64_t everyOtherByte = 0x00FF00FF00FF00FF;
    constexpr std::uint64_t rounding = 0x0080008000800080;
    constexpr std::uint64_t colours = 0x00FFFFFF00FFFFFF;
    const std::uint64_t alpha = std::uint64_t{m_alpha} << 56 | std::uint64_t{m_alpha} << s_alphaShift;
    std::size_t index = 0;
    for (; index + 2 <= count; index += 2)
    {
        std::uint64_t pair = 0;
        std::memcpy(&pair, source + index, sizeof(pair));
        const std::uint64_t even = ((pair & everyOtherByte) * m_factor + rounding) >> 8 & everyOtherByte;
        const std::uint64_t odd = ((pair >> 8 & everyOtherByte) * m_factor + rounding) & ~everyOtherByte;
        pair = ((even | odd) & colours) | alpha;
        std::memcpy(target + index, &pair, sizeof(pair));
    }
    if (index < count)
        target[index] = Apply(source[index]);
}

} // namespace Orvik::Graphics::Raster
