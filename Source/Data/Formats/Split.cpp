#include "Data/Formats/Split.h"

#include "Data/Records/Names.h"

#include <charconv>

namespace Orvik::Data
{
namespace
{

constexpr std::uint64_t s_whole = 100;

/// The number at the beginning of the text, which is taken off with the comma after it.
std::optional<std::uint64_t> TakeShare(std::string_view& text)
{
    std::uint64_t share = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, share);
    if (error != std::errc() || share > s_whole || (stop != end && (*stop != ',' || stop + 1 == end)))
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(stop - text.data()) + (stop != end ? 1 : 0));
    return share;
}

} // namespace

std::optional<Split> Split::Parse(std::string_view shares, std::uint64_t seed)
{
    std::array<std::uint64_t, 3> parts = {};
    std::size_t count = 0;
    std::uint64_t sum = 0;
    while (!shares.empty())
    {
        const std::optional<std::uint64_t> share = TakeShare(shares);
        if (!share || count == parts.size())
            return std::nullopt;
        parts[count++] = *share;
        sum += *share;
    }
    if (count < 2 || sum != s_whole)
        return std::nullopt;
    Split split;
    split.m_ends = {parts[0], parts[0] + parts[1]};
    split.m_seed = seed;
    return split;
}

Subset Split::Find(std::string_view name) const
{
    const std::uint64_t place = MixText(name, m_seed) % s_whole;
    if (place < m_ends[0])
        return Subset::Train;
    return place < m_ends[1] ? Subset::Validation : Subset::Test;
}

} // namespace Orvik::Data
