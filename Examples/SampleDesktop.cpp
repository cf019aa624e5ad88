#include "Examples/SampleDesktop.h"

#include "Examples/TextPainter.h"

#include <algorithm>
#include <string>

namespace Orvik::Examples
{
namespace
{

using Tests::Area;
using Tests::Picture;
using Tests::Position;

constexpr int s_titleHeight = 30;
constexpr int s_barHeight = 36;
constexpr int s_textSize = 14;

constexpr std::uint32_t s_ink = 0xFF28303C;
constexpr std::uint32_t s_paper = 0xFFF6F4EE;
constexpr std::uint32_t s_frame = 0xFF8A93A3;
constexpr std::uint32_t s_title = 0xFF4A5266;
constexpr std::uint32_t s_light = 0xFFDDE2EA;
constexpr std::uint32_t s_accent = 0xFF2F7CA0;
constexpr std::uint32_t s_low = 0xFFC06A3A;

/// Draws on a picture with one font.
class Painter
{
public:
    Painter(Picture& picture, const std::filesystem::path& fontFile) : m_picture(picture), m_text(fontFile) {}

    /// Fills what of the area lies in the picture.
    void Fill(const Area& area, std::uint32_t colour)
    {
        const int right = std::min(area.x + area.width, m_picture.width);
        const int bottom = std::min(area.y + area.height, m_picture.height);
        for (int y = std::max(area.y, 0); y < bottom; ++y)
            for (int x = std::max(area.x, 0); x < right; ++x)
                m_picture.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_picture.width) +
                                 static_cast<std::size_t>(x)] = colour;
    }

    /// An area with a frame of one pixel inside of it.
    void FillFramed(const Area& area, std::uint32_t colour, std::uint32_t frame)
    {
        Fill(area, frame);
        Fill({area.x + 1, area.y + 1, area.width - 2, area.height - 2}, colour);
    }

    void Write(Position start, std::string_view text, int size = s_textSize, std::uint32_t colour = s_ink)
    {
        m_text.Write(m_picture, start, size, colour, text);
    }

    /// A window with its shadow, its title bar and a button to close it.
    void DrawWindow(const Area& area, std::string_view title)
    {
        constexpr std::uint32_t shadow = 0xFF24303C;
        Fill({area.x + 4, area.y + 6, area.width, area.height}, shadow);
        FillFramed(area, s_paper, s_frame);
        Fill({area.x + 1, area.y + 1, area.width - 2, s_titleHeight}, s_title);
        Write({area.x + 14, area.y + 21}, title, s_textSize, s_light);
        Fill({area.x + area.width - 24, area.y + 11, 10, 10}, s_light);
    }

    /// The inside of an outline, row by row: a pixel is inside if an odd number of edges lies left of its middle.
    template <typename Outline>
    void FillOutline(const Outline& outline, std::uint32_t colour)
    {
        for (int y = 0; y < m_picture.height; ++y)
        {
            std::vector<int> crossings;
            for (std::size_t i = 0; i < outline.size(); ++i)
            {
                const Position& a = outline[i];
                const Position& b = outline[(i + 1) % outline.size()];
                if ((a.y <= y) != (b.y <= y))
                    crossings.push_back(a.x + (b.x - a.x) * (y - a.y) / (b.y - a.y));
            }
            std::sort(crossings.begin(), crossings.end());
            for (std::size_t i = 0; i + 1 < crossings.size(); i += 2)
                Fill({crossings[i], y, crossings[i + 1] - crossings[i], 1}, colour);
        }
    }

private:
    Picture& m_picture;
    TextPainter m_text;
};

Picture MakeBackground(int width, int height)
{
    Picture picture{width, height, {}};
    for (int y = 0; y < height; ++y)
    {
        const int shade = 60 * y / height;
        const auto colour = static_cast<std::uint32_t>((40 + shade) << 16 | (80 + shade) << 8 | (120 - shade / 3));
        picture.pixels.insert(picture.pixels.end(), static_cast<std::size_t>(width), 0xFF000000U | colour);
    }
    return picture;
}

void DrawPage(Painter& painter)
{
    painter.DrawWindow({60, 40, 640, 530}, "Garden notes");
    painter.Write({92, 122}, "Rain on the hill garden", 27);
    painter.Write({92, 158}, "The barrel by the shed filled twice in April and stood dry for most of June. The beans");
    painter.Write({92, 180}, "did not mind; the lettuce did. We moved the soaker hose to the upper bed on the third");
    painter.Write({92, 202}, "of July, and the weekly numbers have been steadier since.");
    painter.Write({92, 548}, "July was the month of the broken gutter. It has been mended with a length of hose.");

    struct Month
    {
        const char* name;
        int litres;
    };
    constexpr Month months[] = {{"Mar", 92}, {"Apr", 138}, {"May", 176}, {"Jun", 121},
                                {"Jul", 44}, {"Aug", 70},  {"Sep", 103}, {"Oct", 149}};
    constexpr int foot = 490;
    painter.FillFramed(SampleChart, 0xFFFFFFFF, s_frame);
    painter.Write({104, 266}, "Litres collected, by month", 16);
    painter.Fill({104, foot, 550, 2}, s_frame);
    int x = 112;
    for (const Month& month : months)
    {
        painter.Fill({x, foot - month.litres, 45, month.litres}, month.litres < 50 ? s_low : s_accent);
        painter.Write({x + 11, foot - month.litres - 6}, std::to_string(month.litres), 13);
        painter.Write({x + 11, foot + 19}, month.name, 13);
        x += 68;
    }
}

void DrawForm(Painter& painter)
{
    struct Field
    {
        const char* label;
        const char* value;
    };
    constexpr Field fields[] = {{"Name", "Ada Hill"}, {"Article", "Rain barrel, 200 l"}, {"Amount", "2"}};

    painter.DrawWindow({760, 60, 460, 280}, "New order");
    Area box = SampleField;
    for (const Field& field : fields)
    {
        painter.Write({784, box.y + 19}, field.label);
        painter.FillFramed(box, 0xFFFFFFFF, s_frame);
        painter.Write({box.x + 10, box.y + 19}, field.value);
        box.y += 42;
    }
    painter.FillFramed({880, box.y + 4, 16, 16}, 0xFFFFFFFF, s_frame);
    painter.Fill({884, box.y + 8, 8, 8}, s_accent);
    painter.Write({906, box.y + 17}, "Deliver on Saturday");

    painter.FillFramed({964, SampleButton.y, SampleButton.width, SampleButton.height}, 0xFFE4E6EA, s_frame);
    painter.Write({996, SampleButton.y + 21}, "Cancel");
    painter.FillFramed(SampleButton, s_accent, 0xFF1D5A78);
    painter.Write({SampleButton.x + 18, SampleButton.y + 21}, "Send order", s_textSize, 0xFFFFFFFF);
}

void DrawPlan(Painter& painter)
{
    painter.DrawWindow({760, 370, 460, 270}, "Garden plan");
    painter.Fill({761, 401, 458, 238}, 0xFFA9BE8C); // grass
    painter.Fill({1130, 401, 46, 238}, 0xFFD0C6AE); // the path
    painter.FillFramed({SampleShed.x, SampleShed.y, 40, 40}, 0xFF8C6B52, 0xFF5C4636);
    painter.Write({780, 474}, "Shed", 13);
    painter.FillOutline(SampleBed, 0xFF7A5C48);
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 7; ++column)
        {
            const Position plant{892 + 26 * column, 480 + 24 * row};
            painter.Fill({plant.x - 4, plant.y - 4, 9, 9}, row % 2 == 0 ? 0xFFC8576E : 0xFFE0B23C);
        }
    painter.Write({1016, 626}, "Upper bed", 13);
}

} // namespace

Tests::Picture MakeSampleDesktop(int width, int height, const std::filesystem::path& fontFile)
{
    constexpr std::uint32_t bar = 0xFF1E2630;
    Picture picture = MakeBackground(width, height);
    Painter painter(picture, fontFile);
    DrawPage(painter);
    DrawForm(painter);
    DrawPlan(painter);
    painter.Fill({0, height - s_barHeight, width, s_barHeight}, bar);
    painter.Write({24, height - 13}, "Garden notes", s_textSize, s_light);
    painter.Write({150, height - 13}, "New order", s_textSize, s_light);
    painter.Write({252, height - 13}, "Garden plan", s_textSize, s_light);
    painter.Write({width - 70, height - 13}, "17:42", s_textSize, s_light);
    return picture;
}

} // namespace Orvik::Examples
