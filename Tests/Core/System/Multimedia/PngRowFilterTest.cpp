#include "Core/System/Multimedia/PngRowFilter.h"

#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace Orvik::System::Multimedia
{
namespace
{

using Bytes = std::vector<std::uint8_t>;

// The format's predictions and libpng's choice among them, byte by byte.
class PlainFilter
{
public:
    PlainFilter(std::size_t width, std::size_t height, std::size_t pixelBytes)
        : m_width(width), m_height(height), m_pixelBytes(pixelBytes), m_above(width * pixelBytes)
    {
    }

    void Begin(const Bytes& above) { m_above = Exchange(above); }

    Bytes Filter(const Bytes& bitmapRow)
    {
        const Bytes row = Exchange(bitmapRow);
        std::vector<int> allowed = {0};
        if (m_width > 1)
            allowed.push_back(1);
        if (m_height > 1)
            allowed.push_back(2);
        if (m_width > 1 && m_height > 1)
            allowed.insert(allowed.end(), {3, 4});
        Bytes best;
        long bestSum = 0;
        for (const int filter : allowed)
        {
            const Bytes stored = Apply(filter, row);
            long sum = 0;
            for (std::size_t i = 1; i < stored.size(); ++i)
                sum += stored[i] < 128 ? stored[i] : 256 - stored[i];
            if (best.empty() || sum < bestSum)
            {
                best = stored;
                bestSum = sum;
            }
        }
        m_above = row;
        return best;
    }

private:
    [[nodiscard]] Bytes Exchange(Bytes row) const
    {
        for (std::size_t i = 0; i < row.size(); i += m_pixelBytes)
            std::swap(row[i], row[i + 2]);
        return row;
    }

    [[nodiscard]] Bytes Apply(int filter, const Bytes& row) const
    {
        Bytes stored = {static_cast<std::uint8_t>(filter)};
        for (std::size_t i = 0; i < row.size(); ++i)
        {
            const int left = i < m_pixelBytes ? 0 : row[i - m_pixelBytes];
            const int upLeft = i < m_pixelBytes ? 0 : m_above[i - m_pixelBytes];
            stored.push_back(static_cast<std::uint8_t>(row[i] - Predict(filter, left, m_above[i], upLeft)));
        }
        return stored;
    }

    static int Predict(int filter, int left, int up, int upLeft)
    {
        const int estimate = left + up - upLeft;
        const int fromLeft = std::abs(estimate - left);
        const int fromUp = std::abs(estimate - up);
        const int fromUpLeft = std::abs(estimate - upLeft);
        const int upOrUpLeft = fromUp <= fromUpLeft ? up : upLeft;
        const int nearest = fromLeft <= fromUp && fromLeft <= fromUpLeft ? left : upOrUpLeft;
        return std::array{0, left, up, (left + up) / 2, nearest}[static_cast<std::size_t>(filter)];
    }

    std::size_t m_width;
    std::size_t m_height;
    std::size_t m_pixelBytes;
    Bytes m_above;
};

class RowMaker
{
public:
    explicit RowMaker(unsigned seed) : m_engine(seed) {}

    // Anything from flat over slopes and repetitions of `above` to noise, with the extremes among it.
    Bytes Make(std::size_t bytes, const Bytes& above)
    {
        const unsigned roughness = 1U << m_engine() % 9;
        const unsigned kind = m_engine() % 4;
        Bytes row(bytes);
        for (std::size_t i = 0; i < bytes; ++i)
        {
            const auto some = static_cast<std::uint8_t>(m_engine() % roughness);
            const std::uint8_t left = i < 4 ? 0 : row[i - 4];
            const auto mean = static_cast<std::uint8_t>((left + above[i]) / 2);
            row[i] = static_cast<std::uint8_t>(std::array{std::uint8_t{128}, left, above[i], mean}[kind] + some);
        }
        return row;
    }

    unsigned Draw(unsigned limit) { return static_cast<unsigned>(m_engine() % limit); }

private:
    std::mt19937 m_engine;
};

Bytes FilterBy(PngRowFilter& filter, const Bytes& row)
{
    Bytes stored(filter.GetStoredBytes() + PngRowFilter::Overrun);
    filter.Filter(row.data(), stored.data());
    stored.resize(filter.GetStoredBytes());
    return stored;
}

TEST(PngRowFilter, OfRandomRowsIsThePlainOne)
{
    RowMaker maker(1);
    std::array<int, 5> chosen = {};
    for (int picture = 0; picture < 3'000; ++picture)
    {
        const std::size_t pixelBytes = 3 + maker.Draw(2);
        // A few beyond what sums of 16 bits hold.
        const std::size_t width = 1 + maker.Draw(picture % 100 == 0 ? 3'000 : 70);
        const std::size_t height = 1 + maker.Draw(6);
        SCOPED_TRACE(std::to_string(picture) + ": " + std::to_string(width) + "x" + std::to_string(height) + "x" +
                     std::to_string(pixelBytes));
        PngRowFilter filter(width, height, pixelBytes);
        PlainFilter plain(width, height, pixelBytes);
        filter.Begin(nullptr);
        Bytes row(width * pixelBytes);
        for (std::size_t y = 0; y < height; ++y)
        {
            row = maker.Make(row.size(), row);
            const Bytes expected = plain.Filter(row);
            ASSERT_EQ(FilterBy(filter, row), expected) << "row " << y;
            ++chosen[expected[0]];
        }
    }
    for (const int count : chosen)
        EXPECT_GT(count, 100) << "The rows leave a prediction out.";
}

TEST(PngRowFilter, BeginsAnywhere)
{
    RowMaker maker(2);
    constexpr std::size_t width = 33;
    const Bytes above = maker.Make(width * 4, Bytes(width * 4, 7));
    const Bytes row = maker.Make(width * 4, above);
    PngRowFilter filter(width, 9, 4);
    PlainFilter plain(width, 9, 4);
    (void)FilterBy(filter, row);
    filter.Begin(above.data());
    plain.Begin(above);
    EXPECT_EQ(FilterBy(filter, row), plain.Filter(row));
    filter.Begin(nullptr);
    plain.Begin(Bytes(above.size(), 0));
    EXPECT_EQ(FilterBy(filter, row), plain.Filter(row));
}

TEST(PngRowFilter, OfEveryTripleOfNeighboursIsThePlainOne)
{
    // Left, up and up left of the second pixel in coarse steps and at the extremes; `Paeth` compares distances.
    constexpr std::array<int, 12> values = {0, 1, 2, 63, 64, 100, 127, 128, 129, 200, 254, 255};
    for (const int left : values)
    {
        for (const int up : values)
        {
            for (const int upLeft : values)
            {
                const auto make = [](int first, int second)
                {
                    Bytes row(36);
                    for (std::size_t i = 0; i < row.size(); ++i)
                        row[i] = static_cast<std::uint8_t>(i / 3 % 2 == 0 ? first : second);
                    return row;
                };
                PngRowFilter filter(12, 2, 3);
                PlainFilter plain(12, 2, 3);
                filter.Begin(make(upLeft, up).data());
                plain.Begin(make(upLeft, up));
                const Bytes row = make(left, left + up - upLeft);
                ASSERT_EQ(FilterBy(filter, row), plain.Filter(row)) << left << " " << up << " " << upLeft;
            }
        }
    }
}

} // namespace
} // namespace Orvik::System::Multimedia
