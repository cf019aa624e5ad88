#pragma once

#include "Core/System/Multimedia/Bitmap.h"
#include "Core/System/Text/Paths.h"
#include "Data/Program.h"
#include "Data/Records/Names.h"
#include "Data/Records/PictureFile.h"
#include "Data/Records/RecordReader.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/CapturedStream.h"
#include "Tests/Support/SamplePictures.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <string>
#include <vector>

namespace Orvik::Data
{

/// What the program printed and ended with.
struct ProgramRun
{
    ExitCode code = ExitCode::Done;
    std::string output;
    std::string errors;

    /// The output as JSON; null if it is none.
    [[nodiscard]] rapidjson::Document Parse() const
    {
        rapidjson::Document document;
        document.Parse(output.c_str());
        return document;
    }
};

inline ProgramRun RunWith(const std::vector<std::string>& words)
{
    const Tests::CapturedStream output;
    const Tests::CapturedStream errors;
    ProgramRun run;
    run.code = RunProgram(words, {output.Get(), errors.Get()});
    run.output = output.Read();
    run.errors = errors.Read();
    return run;
}

/// A folder as the program leaves it: pictures and their annotations, of which some have labels and polygons.
class SampleSet : public testing::Test
{
protected:
    static constexpr int s_count = 12;

    SampleSet()
    {
        std::filesystem::create_directory(m_source);
        for (int i = 0; i < s_count; ++i)
            m_records.push_back(AddRecord(i));
    }

    Record AddRecord(int number)
    {
        Record record;
        record.id = MakeIdentifier("sample " + std::to_string(number));
        record.time = "2026-11-21T16:49:00.4505602Z";
        record.width = 61 + number;
        record.height = 47;
        const auto addBox = [&](const System::Math::Rectangle& box, const char* label, Ring ring)
        {
            const std::string id = MakeIdentifier(record.id + label + std::to_string(record.annotations.size()));
            record.annotations.push_back({id, box, label, std::move(ring)});
        };
        addBox({number, 3, number + 20, 40}, number % 2 == 0 ? "button" : "text field", {});
        addBox({0, 0, record.width, record.height}, number % 3 == 0 ? "" : "Men\xC3\xBC <&>", {});
        if (number % 4 == 0)
            addBox({5, 6, 25, 36}, "icon", {{5, 20}, {15, 6}, {25, 36}, {5, 20}});
        if (number % 5 == 0)
            addBox({5, 6, 25, 36}, "icon", {{5, 6}, {25, 6}, {25, 36}, {5, 36}, {5, 6}});
        Save(record);
        return record;
    }

    void Save(const Record& record)
    {
        const auto picture = Tests::MakeSamplePicture("interface", static_cast<std::uint16_t>(record.width),
                                                      static_cast<std::uint16_t>(record.height));
        const std::string path = GetText(m_source / record.id);
        const bool isSaved = record.width % 5 == 4 ? picture.SaveBmp(path + ".bmp") : picture.SavePng(path + ".png");
        ASSERT_TRUE(isSaved);
        WriteText(m_source / (record.id + ".json"), MakeRecordJson(record));
    }

    static void WriteText(const std::filesystem::path& path, const std::string& text)
    {
        Tests::WriteBytes(path, {text.begin(), text.end()});
    }

    static std::string GetText(const std::filesystem::path& path) { return System::Text::PathToUtf8(path); }

    /// Below the test's folder.
    [[nodiscard]] std::string At(const char* name) const { return GetText(m_directory.GetPath() / name); }

    static std::size_t CountFiles(const std::filesystem::path& folder)
    {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
    }

    Tests::TemporaryDirectory m_directory;
    std::filesystem::path m_source = m_directory.GetPath() / "source";
    std::vector<Record> m_records;
};

} // namespace Orvik::Data
