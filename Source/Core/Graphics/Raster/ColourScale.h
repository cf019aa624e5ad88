#pragma once

#include "Core/Graphics/Raster/Colour.h"
#include "Core/System/Types/Matrix4.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace Orvik::Graphics::Raster
{

/// Multiplies the colours of opaque pixels by a colour. The alpha of the results is the colour's own.
class ColourScale
{
public:
    explicit ColourScale(const System::Math::Vector4& colour);

    /// `source` and `target` are `count` pixels; they may be the same.
    void Apply(const PackedColour* source, PackedColour* target, std::size_t count) const;

    [[nodiscard]] PackedColour Apply(PackedColour colour) const;
    [[nodiscard]] bool IsOpaque() const { return m_alpha == s_channelMask; }

private:
    using Table = std::array<std::uint8_t, 256>;

    /// Whether the factor gives the same results as the tables.
    [[nodiscard]] bool IsEven() const;
    void ApplyEvenly(const PackedColour* source, PackedColour* target, std::size_t count) const;

    std::array<Table, 3> m_tables; ///< blue, green, red
    std::uint32_t m_alpha;
    std::uint32_t m_factor = 0; ///< in 256ths, the same for all three; 0 if only the tables will do
};

} // namespace Orvik::Graphics::Raster
