// crop, mask, draw and sheet.
#include "Core/System/Multimedia/PolygonMask.h"
#include "Tests/Data/Verbs/SampleSet.h"
#include "Tests/Support/PngBuilder.h"

#include <cstring>

namespace Orvik::Data
{
namespace
{

using System::Multimedia::Bitmap;
using testing::HasSubstr;

class Pictures : public SampleSet
{
protected:
    [[nodiscard]] std::size_t CountAnnotations() const
    {
        std::size_t count = 0;
        for (const Record& record : m_records)
            count += record.annotations.size();
        return count;
    }

    [[nodiscard]] ProgramRun RunInto(const char* verb, const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> words = {verb, GetText(m_source), At("out")};
        words.insert(words.end(), options.begin(), options.end());
        return RunWith(words);
    }

    [[nodiscard]] Bitmap LoadOut(const std::string& id) const
    {
        std::optional<Bitmap> picture = LoadPicture(m_directory.GetPath() / "out" / (id + ".png"));
        EXPECT_TRUE(picture) << id;
        return picture ? std::move(*picture) : Bitmap(1, 1, 32);
    }

    [[nodiscard]] Bitmap LoadSource(const Record& record) const
    {
        return *LoadPicture(FindPicture(m_source / (record.id + ".json")));
    }

    /// Visits each annotation: whether it has a pixel is what a selection with its polygon would keep.
    template <typename Visit>
    void ForEachPixel(const Visit& visit) const
    {
        for (const Record& record : m_records)
        {
            const Bitmap source = LoadSource(record);
            for (const Annotation& annotation : record.annotations)
            {
                Bitmap kept = source.Crop(annotation.box.left, annotation.box.top, annotation.box.GetWidth(),
                                          annotation.box.GetHeight());
                Ring ring = annotation.ring;
                for (auto& corner : ring)
                    corner = {corner.x - annotation.box.left, corner.y - annotation.box.top};
                if (!ring.empty())
                    kept.ClearOutsidePolygon(ring, false);
                visit(record, annotation, kept);
            }
        }
    }
};

TEST_F(Pictures, ACropIsThePartOfThePicture)
{
    const ProgramRun run = RunInto("crop");
    EXPECT_EQ(run.code, ExitCode::Done) << run.errors;
    EXPECT_EQ(CountFiles(m_directory.GetPath() / "out"), CountAnnotations());
    ForEachPixel(
        [this](const Record& /*record*/, const Annotation& annotation, const Bitmap& kept)
        {
            const Bitmap crop = LoadOut(annotation.id);
            ASSERT_EQ(crop.GetWidth(), kept.GetWidth());
            ASSERT_EQ(crop.GetSize(), kept.GetSize());
            EXPECT_EQ(std::memcmp(crop.GetPixels(), kept.GetPixels(), static_cast<std::size_t>(kept.GetSize())), 0);
        });
}

TEST_F(Pictures, ACropKeepsWhatIsOutsideIfAskedTo)
{
    ASSERT_EQ(RunInto("crop", {"--keep-mask"}).code, ExitCode::Done);
    const Bitmap crop = LoadOut(m_records[4].annotations[2].id);
    for (std::int32_t i = 3; i < crop.GetSize(); i += 4)
        ASSERT_EQ(crop.GetPixels()[i], 255);
}

TEST_F(Pictures, AMaskIsWhiteWhereTheAnnotationIs)
{
    for (const bool isCropped : {false, true})
    {
        const ProgramRun run =
            RunInto("mask", isCropped ? std::vector<std::string>{"--crop", "--force"} : std::vector<std::string>{});
        EXPECT_EQ(run.code, ExitCode::Done) << run.errors;
        ForEachPixel(
            [&](const Record& record, const Annotation& annotation, const Bitmap& kept)
            {
                const Bitmap mask = LoadOut(annotation.id);
                const auto& box = annotation.box;
                ASSERT_EQ(mask.GetWidth(), isCropped ? kept.GetWidth() : record.width);
                ASSERT_EQ(mask.GetHeight(), isCropped ? kept.GetHeight() : record.height);
                const std::int32_t left = isCropped ? box.left : 0;
                const std::int32_t top = isCropped ? box.top : 0;
                for (std::int32_t y = top; y < top + mask.GetHeight(); ++y)
                    for (std::int32_t x = left; x < left + mask.GetWidth(); ++x)
                    {
                        const bool isWithin = x >= box.left && x < box.right && y >= box.top && y < box.bottom;
                        const bool isKept =
                            isWithin &&
                            kept.GetPixels()[(y - box.top) * kept.GetStride() + (x - box.left) * 4 + 3] != 0;
                        const std::uint8_t* const pixel =
                            mask.GetPixels() + (y - top) * mask.GetStride() + (x - left) * 4;
                        ASSERT_EQ(pixel[0], isKept ? 255 : 0) << x << " " << y;
                        ASSERT_EQ(pixel[2], pixel[0]);
                    }
            });
    }
}

TEST_F(Pictures, ADrawnPictureDiffersAtItsMarks)
{
    ASSERT_EQ(RunInto("draw", {"--no-text"}).code, ExitCode::Done);
    EXPECT_EQ(CountFiles(m_directory.GetPath() / "out"), m_records.size());
    const Record& record = m_records[3];
    const Bitmap source = LoadSource(record);
    const Bitmap drawn = LoadOut(record.id);
    ASSERT_EQ(source.GetSize(), drawn.GetSize());
    const auto& box = record.annotations[0].box;
    const auto isSame = [&](std::int32_t x, std::int32_t y)
    {
        const std::int32_t place = y * source.GetStride() + x * 4;
        return std::memcmp(source.GetPixels() + place, drawn.GetPixels() + place, 4) == 0;
    };
    EXPECT_FALSE(isSame(box.left, box.top + 10));
    EXPECT_FALSE(isSame(box.right - 1, box.top + 10));
    for (std::int32_t y = box.top + 2; y < box.bottom - 2; ++y)
        for (std::int32_t x = box.left + 2; x < box.right - 2; ++x)
            ASSERT_TRUE(isSame(x, y));
}

TEST_F(Pictures, ASheetHasAPlaceForEachPicture)
{
    const ProgramRun run = RunWith({"sheet", GetText(m_source), At("sheet.png"), "--columns", "4", "--size", "64"});
    EXPECT_EQ(run.code, ExitCode::Done) << run.errors;
    const std::optional<Bitmap> sheet = LoadPicture(m_directory.GetPath() / "sheet.png");
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->GetWidth(), 8 + 4 * (64 + 8));
    EXPECT_EQ(sheet->GetHeight(), 8 + 3 * (64 + 16 + 8));
}

TEST_F(Pictures, WhatOneSheetHasNoRoomForGoesToTheNext)
{
    const ProgramRun run =
        RunWith({"sheet", GetText(m_source), At("sheet.png"), "--columns", "5", "--rows", "1", "--size", "32"});
    EXPECT_EQ(run.code, ExitCode::Done) << run.errors;
    EXPECT_THAT(run.output, HasSubstr("sheets written: 3\n"));
    EXPECT_EQ(LoadPicture(m_directory.GetPath() / "sheet-2.png")->GetWidth(), 8 + 5 * (32 + 8));
    EXPECT_EQ(LoadPicture(m_directory.GetPath() / "sheet-3.png")->GetWidth(), 8 + 2 * (32 + 8));
}

TEST_F(Pictures, ASheetThatIsTooLargeToBeReadAgainIsRefused)
{
    const ProgramRun run =
        RunWith({"sheet", GetText(m_source), At("sheet.png"), "--size", "1024", "--columns", "15", "--rows", "40"});
    EXPECT_EQ(run.code, ExitCode::WrongCall);
    EXPECT_THAT(run.errors, HasSubstr("a sheet has at most 134,217,728 pixels"));
    EXPECT_FALSE(std::filesystem::exists(m_directory.GetPath() / "sheet.png"));
}

TEST_F(Pictures, NothingIsReplacedUnlessForced)
{
    for (const char* verb : {"crop", "mask", "draw"})
    {
        ASSERT_EQ(RunInto(verb, {"--force"}).code, ExitCode::Done) << verb;
        const ProgramRun again = RunInto(verb);
        EXPECT_EQ(again.code, ExitCode::Findings) << verb;
        EXPECT_THAT(again.errors, HasSubstr("exists already")) << verb;
    }
    ASSERT_EQ(RunWith({"sheet", GetText(m_source), At("s.png")}).code, ExitCode::Done);
    EXPECT_EQ(RunWith({"sheet", GetText(m_source), At("s.png")}).code, ExitCode::CannotRun);
    EXPECT_EQ(RunWith({"sheet", GetText(m_source), At("none/s.png")}).code, ExitCode::CannotRun);
}

TEST_F(Pictures, AMaskThatNoBitmapHoldsIsRefused)
{
    // A head of a PNG, which is all that is read of it.
    Record record = m_records[0];
    record.id = MakeIdentifier("huge");
    record.width = 21'845;
    record.height = 65'535;
    record.annotations.resize(1);
    record.annotations[0].id = MakeIdentifier("huge annotation");
    WriteText(m_source / (record.id + ".json"), MakeRecordJson(record));
    Tests::WriteBytes(m_source / (record.id + ".png"), Tests::MakePng({.width = 21'845, .height = 65'535}, {}));
    const ProgramRun run = RunInto("mask");
    EXPECT_EQ(run.code, ExitCode::Findings);
    EXPECT_THAT(run.errors, HasSubstr("a mask that large"));
    EXPECT_EQ(CountFiles(m_directory.GetPath() / "out"), CountAnnotations());
}

TEST_F(Pictures, ABrokenFileIsNamedAndSkipped)
{
    WriteText(m_source / (m_records[0].id + ".json"), "{");
    for (const char* verb : {"crop", "mask", "draw"})
    {
        const ProgramRun run = RunInto(verb, {"--force"});
        EXPECT_EQ(run.code, ExitCode::Findings) << verb;
        EXPECT_THAT(run.errors, HasSubstr(m_records[0].id)) << verb;
        EXPECT_FALSE(
            std::filesystem::exists(m_directory.GetPath() / "out" / (m_records[0].annotations[0].id + ".png")));
    }
    EXPECT_EQ(CountFiles(m_directory.GetPath() / "out"),
              CountAnnotations() - m_records[0].annotations.size() + m_records.size() - 1);
}

TEST_F(Pictures, AFolderThatCannotBeMadeEndsTheRun)
{
    WriteText(m_directory.GetPath() / "out", "in the way");
    for (const char* verb : {"crop", "mask", "draw"})
        EXPECT_EQ(RunInto(verb).code, ExitCode::CannotRun) << verb;
}

} // namespace
} // namespace Orvik::Data
