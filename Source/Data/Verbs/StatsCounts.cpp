#include "Data/Verbs/StatsCounts.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <fmt/format.h>

namespace Orvik::Data
{
namespace
{

using System::Math::Rectangle;

constexpr const char* s_otherLabels = "(other labels)";

std::int64_t GetArea(const Rectangle& box)
{
    return std::int64_t{box.GetWidth()} * box.GetHeight();
}

/// Which of the steps below 1/8, 1/4, 1/2, 1, 2, 4, 8 and above.
std::size_t FindAspectStep(std::int64_t width, std::int64_t height, std::size_t steps)
{
    constexpr std::int64_t narrowest = 8;
    std::size_t step = 0;
    // 1/8, 1/4 and so on times 8.
    for (std::int64_t limit = 1; step + 1 < steps && width * narrowest >= height * limit; limit *= 2)
        ++step;
    return step;
}

} // namespace

void PixelCounts::Add(std::int32_t pixels)
{
    ++m_counts[std::min(static_cast<std::size_t>(std::max(pixels, 0)), s_size - 1)];
    ++m_total;
}

std::int32_t PixelCounts::GetShare(std::uint64_t below) const
{
    std::uint64_t passed = 0;
    for (std::size_t pixels = 0; pixels < m_counts.size(); ++pixels)
    {
        passed += m_counts[pixels];
        if (passed > below)
            return static_cast<std::int32_t>(pixels);
    }
    return 0;
}

StatsCounts::StatsCounts() = default;

void StatsCounts::Add(const Record& record)
{
    if (record.kind == Record::Kind::Snip)
    {
        ++m_snips;
        return;
    }
    ++m_pictures;
    for (const Annotation& annotation : record.annotations)
    {
        ++m_annotations;
        m_polygons += annotation.ring.empty() ? 0 : 1;
        const bool isKnown = m_labels.size() < s_maxClasses || m_labels.count(annotation.label) != 0;
        ++m_labels[isKnown ? annotation.label : s_otherLabels];
        AddBox(annotation.box);
    }
    AddOverlaps(record);
}

void StatsCounts::AddBox(const Rectangle& box)
{
    const auto width = static_cast<std::int32_t>(box.GetWidth());
    const auto height = static_cast<std::int32_t>(box.GetHeight());
    m_widths.Add(width);
    m_heights.Add(height);
    const auto side = static_cast<std::uint32_t>(std::sqrt(static_cast<double>(GetArea(box))));
    ++m_sizes[static_cast<std::size_t>(std::bit_width(std::max(side, 1U))) - 1];
    ++m_aspects[FindAspectStep(width, height, m_aspects.size())];
}

// From left to right, so that only what may touch is compared.
void StatsCounts::AddOverlaps(const Record& record)
{
    std::vector<Rectangle> boxes;
    for (const Annotation& annotation : record.annotations)
        boxes.push_back(annotation.box);
    std::sort(boxes.begin(), boxes.end(), [](const Rectangle& a, const Rectangle& b) { return a.left < b.left; });
    for (std::size_t i = 0; i < boxes.size(); ++i)
        for (std::size_t k = i + 1; k < boxes.size() && boxes[k].left < boxes[i].right; ++k)
        {
            const Rectangle common = System::Math::Intersect(boxes[i], boxes[k]);
            if (common.top >= common.bottom)
                continue;
            const std::int64_t shared = GetArea(common);
            const std::int64_t all = GetArea(boxes[i]) + GetArea(boxes[k]) - shared;
            const std::size_t step = static_cast<std::size_t>(shared * 10 >= all) +
                                     static_cast<std::size_t>(shared * 2 >= all) +
                                     static_cast<std::size_t>(shared * 10 >= all * 9);
            ++m_overlaps[step];
        }
}

std::vector<Column> StatsCounts::GetLabels() const
{
    std::vector<Column> columns;
    for (const auto& [name, count] : m_labels)
        columns.push_back({name, count});
    std::stable_sort(columns.begin(), columns.end(),
                     [](const Column& a, const Column& b) { return a.count > b.count; });
    return columns;
}

std::vector<Column> StatsCounts::GetSizes() const
{
    std::vector<Column> columns;
    for (std::size_t step = 0; step < m_sizes.size(); ++step)
        columns.push_back({step == 0 ? "1" : fmt::format("{}-{}", 1U << step, (2U << step) - 1), m_sizes[step]});
    while (columns.size() > 1 && columns.back().count == 0)
        columns.pop_back();
    return columns;
}

std::vector<Column> StatsCounts::GetAspects() const
{
    constexpr std::array<const char*, s_aspectSteps> names = {"below 1:8", "1:8-1:4", "1:4-1:2", "1:2-1:1",
                                                              "1:1-2:1",   "2:1-4:1", "4:1-8:1", "8:1 and above"};
    std::vector<Column> columns;
    for (std::size_t step = 0; step < names.size(); ++step)
        columns.push_back({names[step], m_aspects[step]});
    return columns;
}

std::vector<Column> StatsCounts::GetOverlaps() const
{
    constexpr std::array<const char*, s_overlapSteps> names = {"below 10 %", "10-50 %", "50-90 %", "90 % and above"};
    std::vector<Column> columns;
    for (std::size_t step = 0; step < names.size(); ++step)
        columns.push_back({names[step], m_overlaps[step]});
    return columns;
}

} // namespace Orvik::Data
