#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Orvik::Data
{

/// The part of a data set that a picture is for.
enum class Subset : std::uint8_t
{
    Train,
    Validation,
    Test,
};

/// Divides pictures among the parts. Where one goes follows from its name and the seed alone, so it stays there when
/// others are added; so the shares are kept on average, not to the picture.
class Split
{
public:
    /// From shares in percent, "80,10,10" or "80,20", that make 100 in all. Nothing if the text is none such.
    [[nodiscard]] static std::optional<Split> Parse(std::string_view shares, std::uint64_t seed);

    [[nodiscard]] Subset Find(std::string_view name) const;

private:
    std::array<std::uint64_t, 2> m_ends = {}; ///< of the first two parts, in percent
    std::uint64_t m_seed = 0;
};

} // namespace Orvik::Data
