#include "Tests/EndToEnd/OutputFiles.h"

#include "Tests/EndToEnd/ProgramTest.h"
#include "Tests/Support/JsonSchema.h"

#include <algorithm>
#include <cstring>
#include <regex>
#include <stdexcept>
#include <thread>

namespace Orvik::Tests
{
namespace
{

constexpr std::chrono::seconds s_limit{10};

const std::string s_guid = R"(\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\})";

/// The text of a file that may be about to be written anew: it counts once it is whole and stays the same.
std::string ReadSettledText(const std::filesystem::path& file)
{
    const std::string text = ReadText(file);
    if (!text.ends_with("\n}"))
        return {};
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return ReadText(file) == text ? text : "";
}

/// The JSON files and their images; nothing if the directory isn't complete yet.
std::vector<SnipFiles> TryList(const std::filesystem::path& directory, std::size_t count, const std::string& extension)
{
    std::vector<SnipFiles> snips;
    const std::vector<std::filesystem::path> files = ListFiles(directory);
    if (files.size() != 2 * count)
        return {};
    for (const std::filesystem::path& file : files)
        if (file.extension() == ".json")
        {
            const SnipFiles snip{file.stem().string(), std::filesystem::path(file).replace_extension(extension),
                                 ReadSettledText(file)};
            if (snip.json.empty() || !std::filesystem::exists(snip.image))
                return {};
            snips.push_back(snip);
        }
    std::sort(snips.begin(), snips.end(),
              [](const SnipFiles& first, const SnipFiles& second)
              { return last_write_time(first.image) < last_write_time(second.image); });
    return snips;
}

/// All of the text's identifiers, in order.
std::vector<std::string> GetIds(const std::string& json)
{
    static const std::regex pattern("\"id\": \"(" + s_guid + ")\"");
    std::vector<std::string> ids;
    for (std::sregex_iterator match(json.begin(), json.end(), pattern); match != std::sregex_iterator(); ++match)
        ids.push_back((*match)[1]);
    return ids;
}

std::string MakeHead(const SnipFiles& files)
{
    return "{\n    \"version\": 1,\n    \"id\": \"" + files.id + "\",\n    \"creationDateTime\": \"" +
           GetCreationTime(files.json) + "\",\n    \"image\": {\n";
}

std::string MakeSize(int width, int height)
{
    return "        \"size\": {\n            \"width\": " + std::to_string(width) +
           ",\n            \"height\": " + std::to_string(height) + "\n        }";
}

std::string MakeCorner(Position corner)
{
    return "            {\n                \"x\": " + std::to_string(corner.x) +
           ",\n                \"y\": " + std::to_string(corner.y) + "\n            }";
}

std::string MakeRectangle(const std::string& id, const Area& area)
{
    return "        {\n            \"id\": \"" + id +
           "\",\n            \"rectangle\": {\n                \"xmin\": " + std::to_string(area.x) +
           ",\n                \"ymin\": " + std::to_string(area.y) +
           ",\n                \"xmax\": " + std::to_string(area.x + area.width) +
           ",\n                \"ymax\": " + std::to_string(area.y + area.height) + "\n            }\n        }";
}

template <typename T>
T ReadField(const std::string& file, std::size_t offset)
{
    T value = {};
    std::memcpy(&value, file.data() + offset, sizeof(value));
    return value;
}

void Require(bool condition, const char* what)
{
    if (!condition)
        throw std::runtime_error(std::string("Not the BMP file expected: ") + what);
}

} // namespace

std::vector<SnipFiles> WaitForSnips(const std::filesystem::path& directory, std::size_t count,
                                    const std::string& extension)
{
    const auto end = std::chrono::steady_clock::now() + s_limit;
    while (std::chrono::steady_clock::now() < end)
    {
        std::vector<SnipFiles> snips = TryList(directory, count, extension);
        if (snips.size() == count)
            return snips;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    std::string found;
    for (const std::filesystem::path& file : ListFiles(directory))
        found += "\n" + file.string();
    throw std::runtime_error("There aren't " + std::to_string(count) + " snips:" + found);
}

std::string MakeMetaText(const SnipFiles& files, int width, int height)
{
    EXPECT_EQ(FindMismatch(files.json, "Snip"), "");
    EXPECT_EQ(GetIds(files.json), std::vector{files.id});
    return MakeHead(files) + MakeSize(width, height) + "\n    }\n}";
}

std::string MakePolygonText(const SnipFiles& files, int width, int height, const std::vector<Position>& corners)
{
    EXPECT_EQ(FindMismatch(files.json, "Snip"), "");
    EXPECT_EQ(GetIds(files.json), std::vector{files.id});
    std::string text = MakeHead(files) + MakeSize(width, height) + ",\n        \"mask\": [\n";
    for (std::size_t i = 0; i < corners.size(); ++i)
        text += MakeCorner(corners[i]) + (i + 1 < corners.size() ? ",\n" : "\n");
    return text + "        ]\n    }\n}";
}

std::string MakeAnnotationText(const SnipFiles& files, int width, int height, const std::vector<Area>& rectangles)
{
    EXPECT_EQ(FindMismatch(files.json, "Annotations"), "");
    std::vector<std::string> ids = GetIds(files.json);
    if (ids.size() != rectangles.size() + 1)
        throw std::runtime_error("The identifiers aren't those of " + std::to_string(rectangles.size()) +
                                 " rectangles:\n" + files.json);
    EXPECT_EQ(ids.front(), files.id);
    std::string text = MakeHead(files) + MakeSize(width, height) + "\n    },\n    \"annotations\": [\n";
    for (std::size_t i = 0; i < rectangles.size(); ++i)
        text += MakeRectangle(ids[i + 1], rectangles[i]) + (i + 1 < rectangles.size() ? ",\n" : "\n");
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(std::unique(ids.begin(), ids.end()), ids.end()) << "An identifier stands twice in\n" << files.json;
    return text + "    ]\n}";
}

std::string GetCreationTime(const std::string& json)
{
    static const std::regex pattern(R"("creationDateTime": "(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{7}Z)\")");
    std::smatch match;
    if (!std::regex_search(json, match, pattern))
        throw std::runtime_error("No time in\n" + json);
    return match[1];
}

std::string FormatNow()
{
    const std::int64_t ticks =
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch())
            .count() /
        100;
    constexpr std::int64_t ticksPerSecond = 10'000'000;
    const std::time_t seconds = ticks / ticksPerSecond;
    std::tm fields = {};
    gmtime_r(&seconds, &fields);
    char date[32] = {};
    std::strftime(date, sizeof(date), "%FT%T", &fields);
    const std::string fraction = std::to_string(ticks % ticksPerSecond);
    return std::string(date) + "." + std::string(7 - fraction.size(), '0') + fraction + "Z";
}

Picture LoadBmp(const std::filesystem::path& file)
{
    constexpr std::size_t headerSize = 54;
    const std::string text = ReadText(file);
    Require(text.size() >= headerSize && text.starts_with("BM"), "signature");
    Require(ReadField<std::uint32_t>(text, 2) == text.size(), "file size");
    Require(ReadField<std::uint32_t>(text, 10) == headerSize, "offset of the pixels");
    Require(ReadField<std::uint32_t>(text, 14) == 40, "header size");
    Require(ReadField<std::uint16_t>(text, 26) == 1, "planes");
    Require(ReadField<std::uint16_t>(text, 28) == 32, "bits per pixel");
    Require(ReadField<std::uint32_t>(text, 30) == 0, "compression");

    Picture picture{ReadField<std::int32_t>(text, 18), -ReadField<std::int32_t>(text, 22), {}};
    Require(picture.width > 0 && picture.height > 0, "size, rows top-down");
    const std::size_t count = static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
    Require(text.size() == headerSize + count * 4, "pixels");
    picture.pixels.resize(count);
    std::memcpy(picture.pixels.data(), text.data() + headerSize, count * 4);
    return picture;
}

} // namespace Orvik::Tests
