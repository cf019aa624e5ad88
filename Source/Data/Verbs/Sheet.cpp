#include "Core/System/Text/Paths.h"
#include "Data/Painting/Marks.h"
#include "Data/Records/PictureFile.h"
#include "Data/Run/OutputFiles.h"
#include "Data/Verbs/RecordRun.h"
#include "Data/Verbs/Verb.h"

#include <algorithm>
#include <fmt/format.h>

namespace Orvik::Data
{
namespace
{

using System::Math::Rectangle;
using System::Multimedia::Bitmap;

constexpr std::int32_t s_gap = 8;
constexpr std::int32_t s_captionHeight = 16;
constexpr std::uint32_t s_textSize = 11;
/// Of the largest picture that is read again.
constexpr std::int64_t s_mostPixels = Bitmap::s_maximumFileBytes / 4;
constexpr Colour s_background = {32, 32, 36};
constexpr Colour s_captionColour = {220, 220, 220};

/// What one sheet looks like.
struct Layout
{
    std::int32_t size; ///< of a small picture's longer side at most, pixels
    std::int32_t columns;
    std::int32_t rows;

    [[nodiscard]] std::int32_t GetStepAcross() const { return size + s_gap; }
    [[nodiscard]] std::int32_t GetStepDown() const { return size + s_captionHeight + s_gap; }
    [[nodiscard]] std::int32_t GetPlaces() const { return columns * rows; }
    // Of a sheet with that many small pictures side by side and below each other, in pixels.
    [[nodiscard]] std::int32_t GetWidth(std::int32_t usedColumns) const
    {
        return s_gap + usedColumns * GetStepAcross();
    }
    [[nodiscard]] std::int32_t GetHeight(std::int32_t usedRows) const { return s_gap + usedRows * GetStepDown(); }
};

/// A small picture and what stands under it.
struct Tile
{
    Bitmap picture;
    std::string caption;
};

std::int32_t Scale(std::int32_t value, std::int32_t target, std::int32_t source)
{
    return static_cast<std::int32_t>((std::int64_t{value} * target + source / 2) / source);
}

/// Boxes as they lie on the small picture, each a pixel wide at least.
std::vector<Annotation> ScaleMarks(const Record& record, const Bitmap& picture)
{
    std::vector<Annotation> marks = record.annotations;
    const auto across = [&](std::int32_t x) { return Scale(x, picture.GetWidth(), record.width); };
    const auto down = [&](std::int32_t y) { return Scale(y, picture.GetHeight(), record.height); };
    for (Annotation& mark : marks)
    {
        const Rectangle& box = mark.box;
        const std::int32_t left = across(box.left);
        const std::int32_t top = down(box.top);
        mark.box = {left, top, std::max(across(box.right), left + 1), std::max(down(box.bottom), top + 1)};
        for (System::Math::Point& corner : mark.ring)
            corner = {across(corner.x), down(corner.y)};
    }
    return marks;
}

Tile MakeTile(const RecordFile& file, const Layout& layout, Findings& findings)
{
    const std::optional<Bitmap> picture = LoadPicture(file.picture);
    if (!picture)
    {
        findings.push_back({file.picture, "the picture is damaged"});
        return {};
    }
    const std::int32_t longer = std::max<std::int32_t>(picture->GetWidth(), picture->GetHeight());
    const std::int32_t size = std::min(longer, layout.size);
    const auto width = static_cast<std::uint32_t>(std::max(Scale(picture->GetWidth(), size, longer), 1));
    const auto height = static_cast<std::uint32_t>(std::max(Scale(picture->GetHeight(), size, longer), 1));
    Tile tile{picture->Resized(width, height, System::Multimedia::ResizeMethod::Box), {}};
    DrawMarks(tile.picture, ScaleMarks(file.record, tile.picture), nullptr, 1);
    tile.caption = fmt::format("{} ({})", file.record.id.substr(1, 8), file.record.annotations.size());
    return tile;
}

/// Fills one sheet after the other and writes each that is full.
class Sheets
{
public:
    Sheets(std::filesystem::path path, const Layout& layout, const OutputFiles& output, Report& report)
        : m_path(std::move(path)),
          m_layout(layout),
          m_output(output),
          m_report(report),
          m_pen(TextPen::Open(s_textSize, report))
    {
    }

    void Add(const Tile& tile)
    {
        if (tile.picture.GetWidth() == 0)
            return;
        if (m_used == 0)
            Begin();
        const std::int32_t x = s_gap + m_used % m_layout.columns * m_layout.GetStepAcross();
        const std::int32_t y = s_gap + m_used / m_layout.columns * m_layout.GetStepDown();
        PutPicture(m_sheet, tile.picture, x + (m_layout.size - tile.picture.GetWidth()) / 2,
                   y + (m_layout.size - tile.picture.GetHeight()) / 2);
        if (m_pen != nullptr)
            m_pen->Write(m_sheet, x, y + m_layout.size, s_captionColour, tile.caption);
        if (++m_used == m_layout.GetPlaces())
            Finish();
    }

    /// Writes what has been begun.
    void Finish()
    {
        if (m_used == 0)
            return;
        const std::int32_t rows = (m_used + m_layout.columns - 1) / m_layout.columns;
        const std::int32_t columns = std::min(m_used, m_layout.columns);
        m_used = 0;
        ++m_number;
        std::filesystem::path path = m_path;
        if (m_number > 1)
        {
            path.replace_filename(m_path.stem());
            path += fmt::format("-{}", m_number);
            path += m_path.extension();
        }
        const std::string error =
            m_output.SavePng(path, m_sheet.Crop(0, 0, static_cast<std::uint32_t>(m_layout.GetWidth(columns)),
                                                static_cast<std::uint32_t>(m_layout.GetHeight(rows))));
        if (error.empty())
            ++m_written;
        else
            m_report.Fail(path, error);
    }

    [[nodiscard]] std::int64_t GetWritten() const { return m_written; }

private:
    void Begin()
    {
        m_sheet.SetSize(static_cast<std::uint16_t>(m_layout.GetWidth(m_layout.columns)),
                        static_cast<std::uint16_t>(m_layout.GetHeight(m_layout.rows)), 32);
        FillArea(m_sheet, {0, 0, m_sheet.GetWidth(), m_sheet.GetHeight()}, s_background);
    }

    std::filesystem::path m_path;
    Layout m_layout;
    const OutputFiles& m_output;
    Report& m_report;
    std::unique_ptr<TextPen> m_pen;
    Bitmap m_sheet;
    std::int32_t m_used = 0; ///< places of the sheet
    std::int64_t m_number = 0;
    std::int64_t m_written = 0;
};

std::string Run(const Arguments& arguments, Report& report)
{
    std::string error;
    const std::int64_t size = GetInteger(arguments, "--size", 160, 16, 1024, error);
    const std::int64_t columns = GetInteger(arguments, "--columns", 10, 1, 15, error);
    const std::int64_t rows = GetInteger(arguments, "--rows", 20, 1, 40, error);
    if (!error.empty())
        return error;
    std::vector<std::string> folders = arguments.operands;
    const std::filesystem::path target = System::Text::PathFromUtf8(folders.back());
    folders.pop_back();
    if (target.extension() != ".png")
        return "the sheet's name has to end in .png";

    const Layout layout{static_cast<std::int32_t>(size), static_cast<std::int32_t>(columns),
                        static_cast<std::int32_t>(rows)};
    if (std::int64_t{layout.GetWidth(layout.columns)} * layout.GetHeight(layout.rows) > s_mostPixels)
        return "a sheet has at most 134,217,728 pixels: fewer rows or columns, or smaller pictures";
    const std::vector<std::filesystem::path> files = ListRecordFiles(folders, report);
    const OutputFiles output(arguments.Has("--force"));
    Sheets sheets(target, layout, output, report);
    RunRecords<Tile>(
        "sheet", files,
        [&layout](const RecordFile& file, Findings& findings) { return MakeTile(file, layout, findings); },
        [&sheets](const Tile& tile) { sheets.Add(tile); }, report);
    sheets.Finish();
    report.AddFigure("files", "files", static_cast<std::int64_t>(files.size()));
    report.AddFigure("sheets", "sheets written", sheets.GetWritten());
    return {};
}

} // namespace

Verb GetSheetVerb()
{
    return {{"sheet",
             "FOLDER... OUT.png",
             2,
             s_anyNumber,
             "Write a contact sheet of all pictures, to look through at a glance",
             "Each small picture bears its rectangles, the first digits of its name and the number of annotations.\n"
             "What one sheet has no room for goes to OUT-2.png and so on. A sheet has at most 134,217,728 pixels.\n",
             {{"--size", "PIXELS", "Longer side of a small picture, 16 to 1024 (160)"},
              {"--columns", "N", "Small pictures side by side, 1 to 15 (10)"},
              {"--rows", "N", "Small pictures below each other at most, 1 to 40 (20)"},
              {"--force", nullptr, "Replace files that exist"}}},
            &Run};
}

} // namespace Orvik::Data
