#pragma once

#include "Data/Records/Record.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Orvik::Data
{

/// How often each number of pixels was there.
class PixelCounts
{
public:
    PixelCounts() : m_counts(s_size) {}

    void Add(std::int32_t pixels);

    // 0 if there is none.
    [[nodiscard]] std::int32_t GetLeast() const { return GetShare(0); }
    [[nodiscard]] std::int32_t GetMedian() const { return m_total > 0 ? GetShare((m_total - 1) / 2) : 0; }
    [[nodiscard]] std::int32_t GetMost() const { return m_total > 0 ? GetShare(m_total - 1) : 0; }

private:
    static constexpr std::size_t s_size = 65'536;

    /// The number that has `below` others below it or equal to it, in their order.
    [[nodiscard]] std::int32_t GetShare(std::uint64_t below) const;

    std::vector<std::uint64_t> m_counts;
    std::uint64_t m_total = 0;
};

/// A column of a chart.
struct Column
{
    std::string name;
    std::int64_t count = 0;
};

/// What is counted of a data set. Its size doesn't depend on the number of files.
class StatsCounts
{
public:
    StatsCounts();

    void Add(const Record& record);

    [[nodiscard]] std::int64_t GetPictures() const { return m_pictures; }
    [[nodiscard]] std::int64_t GetSnips() const { return m_snips; }
    [[nodiscard]] std::int64_t GetAnnotations() const { return m_annotations; }
    [[nodiscard]] std::int64_t GetPolygons() const { return m_polygons; }

    /// The most frequent one first; those without a label have an empty name.
    [[nodiscard]] std::vector<Column> GetLabels() const;
    [[nodiscard]] const PixelCounts& GetWidths() const { return m_widths; }
    [[nodiscard]] const PixelCounts& GetHeights() const { return m_heights; }
    /// By the side of a square of the same area, in steps of 2.
    [[nodiscard]] std::vector<Column> GetSizes() const;
    /// By width to height, in steps of 2.
    [[nodiscard]] std::vector<Column> GetAspects() const;
    /// Pairs in one picture, by what they share of the area that both cover.
    [[nodiscard]] std::vector<Column> GetOverlaps() const;

private:
    static constexpr std::size_t s_sizeSteps = 17;  ///< from 1 to 65,536 pixels
    static constexpr std::size_t s_aspectSteps = 8; ///< below 1/8 to 8 and above
    static constexpr std::size_t s_overlapSteps = 4;

    void AddBox(const System::Math::Rectangle& box);
    void AddOverlaps(const Record& record);

    std::int64_t m_pictures = 0;
    std::int64_t m_snips = 0;
    std::int64_t m_annotations = 0;
    std::int64_t m_polygons = 0;
    std::map<std::string, std::int64_t> m_labels;
    PixelCounts m_widths;
    PixelCounts m_heights;
    std::array<std::int64_t, s_sizeSteps> m_sizes = {};
    std::array<std::int64_t, s_aspectSteps> m_aspects = {};
    std::array<std::int64_t, s_overlapSteps> m_overlaps = {};
};

/// The counts as a picture, SVG.
[[nodiscard]] std::string MakeStatsSvg(const StatsCounts& counts);

} // namespace Orvik::Data
