#include "Core/Graphics/Raster/ColourScale.h"

#include <algorithm>
#include <cmath>

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
        // A half is rounded up.
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

ColourScale::ColourScale(const System::Math::Vector4& colour) : m_alpha(ToByte(colour.w))
{
    const bool isGrey = colour.x == colour.y && colour.y == colour.z;
    m_tables[0] = MakeTable(colour.z);
    m_tables[1] = isGrey ? m_tables[0] : MakeTable(colour.y);
    m_tables[2] = isGrey ? m_tables[0] : MakeTable(colour.x);
    if (!isGrey || !(colour.x >= 0.0F && colour.x <= 1.0F))
        return;
    m_factor = static_cast<std::uint32_t>(std::lrint(colour.x * static_cast<float>(s_wholeFactor)));
    if (!IsEven())
        m_factor = 0;
}

bool ColourScale::IsEven() const
{
    for (std::uint32_t value = 0; value <= s_channelMask; ++value)
    {
        if (m_tables[0][value] != ScaleByte(value, m_factor))
            return false;
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
    // For fewer pixels, preparing the tables takes longer than they save.
    constexpr std::size_t fewPixels = 16;
    if (m_factor != 0 && count >= fewPixels)
    {
        ApplyEvenly(source, target, count);
        return;
    }
    for (std::size_t index = 0; index < count; ++index)
        target[index] = Apply(source[index]);
}

// Byte by byte, in 16 bits: the compiler makes vector instructions of this.
void ColourScale::ApplyEvenly(const PackedColour* source, PackedColour* target, std::size_t count) const
{
    const auto* const from = reinterpret_cast<const std::uint8_t*>(source);
    auto* const to = reinterpret_cast<std::uint8_t*>(target);
    const auto factor = static_cast<std::uint16_t>(m_factor);
    for (std::size_t index = 0; index < count * sizeof(PackedColour); ++index)
    {
        const auto product = static_cast<std::uint16_t>(from[index] * factor + s_rounding);
        to[index] = static_cast<std::uint8_t>(product >> 8U);
    }
    const PackedColour alpha = m_alpha << s_alphaShift;
    constexpr PackedColour colours = ~(s_channelMask << s_alphaShift);
    for (std::size_t index = 0; index < count; ++index)
        target[index] = (target[index] & colours) | alpha;
}

} // namespace Orvik::Graphics::Raster
