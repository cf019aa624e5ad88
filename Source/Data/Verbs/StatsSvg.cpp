#include "Data/Formats/Xml.h"
#include "Data/Painting/Paint.h"
#include "Data/Verbs/StatsCounts.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace Orvik::Data
{
namespace
{

constexpr int s_width = 720;
constexpr int s_nameWidth = 200;
constexpr int s_barWidth = 430;
constexpr int s_rowHeight = 20;
constexpr std::size_t s_maxRows = 40;

/// Grows downward, chart by chart.
class Drawing
{
public:
    void AddTitle(const std::string& title)
    {
        m_top += 34;
        fmt::format_to(std::back_inserter(m_body), "<text x=\"16\" y=\"{}\" font-weight=\"bold\">{}</text>\n",
                       m_top - 8, EscapeXml(title));
    }

    void AddChart(const std::string& title, std::vector<Column> columns, bool areLabels)
    {
        AddTitle(title);
        if (columns.size() > s_maxRows)
        {
            Column rest{fmt::format("{} more", columns.size() - s_maxRows + 1), 0};
            for (std::size_t i = s_maxRows - 1; i < columns.size(); ++i)
                rest.count += columns[i].count;
            columns.resize(s_maxRows - 1);
            columns.push_back(rest);
        }
        std::int64_t most = 1;
        for (const Column& column : columns)
            most = std::max(most, column.count);
        for (const Column& column : columns)
            AddRow(column, most, areLabels);
    }

    [[nodiscard]] std::string Finish() const
    {
        const int height = m_top + 16;
        return fmt::format("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" "
                           "viewBox=\"0 0 {0} {1}\" font-family=\"sans-serif\" font-size=\"13\" fill=\"#222\">\n"
                           "<rect width=\"{0}\" height=\"{1}\" fill=\"#fff\"/>\n{2}</svg>\n",
                           s_width, height, m_body);
    }

private:
    void AddRow(const Column& column, std::int64_t most, bool isLabel)
    {
        const Colour colour = isLabel ? GetLabelColour(column.name) : Colour{70, 110, 170};
        const std::string name = column.name.empty() ? "(no label)" : column.name;
        const auto length = static_cast<double>(column.count) * s_barWidth / static_cast<double>(most);
        fmt::format_to(std::back_inserter(m_body),
                       "<text x=\"{}\" y=\"{}\" text-anchor=\"end\">{}</text>\n"
                       "<rect x=\"{}\" y=\"{}\" width=\"{:.1f}\" height=\"{}\" fill=\"#{:02x}{:02x}{:02x}\"/>\n"
                       "<text x=\"{:.1f}\" y=\"{}\">{}</text>\n",
                       s_nameWidth, m_top + 14, EscapeXml(name), s_nameWidth + 8, m_top + 3, length, s_rowHeight - 6,
                       colour.red, colour.green, colour.blue, s_nameWidth + 14 + length, m_top + 14, column.count);
        m_top += s_rowHeight;
    }

    std::string m_body;
    int m_top = 0;
};

} // namespace

std::string MakeStatsSvg(const StatsCounts& counts)
{
    Drawing drawing;
    drawing.AddTitle(fmt::format("{} pictures, {} annotations, {} of them polygons", counts.GetPictures(),
                                 counts.GetAnnotations(), counts.GetPolygons()));
    drawing.AddChart("Labels", counts.GetLabels(), true);
    drawing.AddChart("Size: side of a square of the same area, pixels", counts.GetSizes(), false);
    drawing.AddChart("Width to height", counts.GetAspects(), false);
    drawing.AddChart("Pairs in one picture that overlap, by the shared part of their area", counts.GetOverlaps(),
                     false);
    return drawing.Finish();
}

} // namespace Orvik::Data
