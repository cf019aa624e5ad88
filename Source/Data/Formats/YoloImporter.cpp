#include "Data/Formats/Importer.h"
#include "Data/Formats/Yaml.h"

#include "Core/System/Text/Paths.h"
#include "Data/Records/Folder.h"
#include "Data/Records/Names.h"
#include "Data/Records/PictureFile.h"
#include "Data/Records/RecordReader.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <string_view>
#include <system_error>
#include <utility>

namespace Orvik::Data
{
namespace
{

namespace fs = std::filesystem;

constexpr std::size_t s_maxYamlBytes = std::size_t{4} * 1024 * 1024;
constexpr int s_maxDepth = 8;

/// The next word of a line, which is taken off; empty at its end.
std::string_view TakeWord(std::string_view& line)
{
    constexpr std::string_view spaces = " \t\r";
    const std::size_t begin = std::min(line.find_first_not_of(spaces), line.size());
    line.remove_prefix(begin);
    const std::string_view word = line.substr(0, std::min(line.find_first_of(spaces), line.size()));
    line.remove_prefix(word.size());
    return word;
}

template <typename Number>
std::optional<Number> ParseWord(std::string_view word)
{
    Number number = 0;
    const char* const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    if (word.empty() || error != std::errc() || stop != end)
        return std::nullopt;
    return number;
}

/// The numbers of a line after the class, as shares of the picture's size.
std::optional<std::vector<double>> ReadShares(std::string_view line)
{
    std::vector<double> shares;
    while (true)
    {
        const std::string_view word = TakeWord(line);
        if (word.empty())
            return shares;
        const std::optional<double> share = ParseWord<double>(word);
        if (!share || shares.size() >= 2 * s_maxCorners)
            return std::nullopt;
        shares.push_back(*share);
    }
}

/// Four corners from the top left one on to the right: how a box stands among segments.
bool IsBox(const Ring& ring)
{
    if (ring.size() != 4)
        return false;
    const System::Math::Rectangle box = GetBounds(ring);
    return ring == Ring{{box.left, box.top}, {box.right, box.top}, {box.right, box.bottom}, {box.left, box.bottom}};
}

bool ReadBoxLine(const std::vector<double>& shares, const PictureHeader& size, Annotation& annotation)
{
    const auto left = RoundPixels((shares[0] - shares[2] / 2) * size.width);
    const auto top = RoundPixels((shares[1] - shares[3] / 2) * size.height);
    const auto right = RoundPixels((shares[0] + shares[2] / 2) * size.width);
    const auto bottom = RoundPixels((shares[1] + shares[3] / 2) * size.height);
    if (!left || !top || !right || !bottom)
        return false;
    const auto box = FitBox({*left, *top, *right, *bottom}, size.width, size.height);
    annotation.box = box.value_or(annotation.box);
    return box.has_value();
}

bool ReadSegmentLine(const std::vector<double>& shares, const PictureHeader& size, Annotation& annotation)
{
    Ring ring;
    for (std::size_t i = 0; i < shares.size(); i += 2)
    {
        const std::optional<std::int32_t> x = RoundPixels(shares[i] * size.width);
        const std::optional<std::int32_t> y = RoundPixels(shares[i + 1] * size.height);
        if (!x || !y)
            return false;
        ring.push_back({*x, *y});
    }
    const bool isBox = IsBox(ring);
    if (!TakeRing(annotation, std::move(ring), size.width, size.height))
        return false;
    if (isBox)
        annotation.ring.clear();
    return true;
}

class YoloImporter : public Importer
{
public:
    explicit YoloImporter(fs::path folder) : m_folder(std::move(folder)) {}

    std::string Open() override
    {
        const std::optional<std::string> text = ReadTextFile(m_folder / "data.yaml", s_maxYamlBytes);
        std::optional<std::vector<std::string>> names = text ? ReadYamlNames(*text) : std::nullopt;
        if (!names)
            return text ? "data.yaml has no names that can be read: a list, or numbers from 0 on without a gap"
                        : "data.yaml can't be read";
        if (!std::all_of(names->begin(), names->end(), [](const std::string& name) { return IsLabel(name); }))
            return "data.yaml has a name that can't be a label";
        m_classes = std::move(*names);
        return AddFolder({}, 0);
    }

    std::size_t GetCount() const override { return m_pictures.size(); }
    fs::path GetPath(std::size_t index) const override
    {
        return (m_folder / "labels" / m_pictures[index]).replace_extension(".txt");
    }
    const std::vector<std::string>& GetClasses() const override { return m_classes; }

    ImportedPicture Get(std::size_t index) const override
    {
        ImportedPicture picture;
        picture.source = m_folder / "images" / m_pictures[index];
        std::string name = System::Text::PathToUtf8(m_pictures[index]);
        std::replace(name.begin(), name.end(), '\\', '/'); // the same identifier on every system
        picture.name = std::move(name);
        const fs::path labels = GetPath(index);
        std::error_code error;
        if (!fs::exists(labels, error)) // a picture of nothing
            return picture;
        const std::optional<std::string> text = ReadTextFile(labels, s_maxRecordBytes);
        const std::optional<PictureHeader> size = ReadPictureHeader(picture.source);
        if (!text)
            picture.error = "can't be read, or is larger than 16 MiB";
        else if (!size)
            picture.error = "its picture is no PNG or BMP file that can be read";
        else
            ReadLines(*text, *size, picture);
        return picture;
    }

private:
    void ReadLines(std::string_view text, const PictureHeader& size, ImportedPicture& picture) const
    {
        std::size_t number = 1;
        for (std::size_t begin = 0; begin < text.size() && picture.error.empty(); ++number)
        {
            const std::size_t end = std::min(text.find('\n', begin), text.size());
            const std::string_view line = text.substr(begin, end - begin);
            begin = end + 1;
            if (line.find_first_not_of(" \t\r") == std::string_view::npos)
                continue;
            std::optional<Annotation> annotation = ReadLine(line, size);
            if (!annotation || picture.annotations.size() >= s_maxAnnotations)
                picture.error = fmt::format(
                    "line {} is no class of data.yaml and a box or polygon within the picture, or is one too many",
                    number);
            else
                picture.annotations.push_back(std::move(*annotation));
        }
    }

    [[nodiscard]] std::optional<Annotation> ReadLine(std::string_view line, const PictureHeader& size) const
    {
        const std::optional<std::size_t> label = ParseWord<std::size_t>(TakeWord(line));
        const std::optional<std::vector<double>> shares = ReadShares(line);
        if (!label || *label >= m_classes.size() || !shares)
            return std::nullopt;
        Annotation annotation{{}, {}, m_classes[*label], {}};
        const bool isBox = shares->size() == 4;
        const bool isSegment = shares->size() >= 6 && shares->size() % 2 == 0;
        const bool isRead = (isBox && ReadBoxLine(*shares, size, annotation)) ||
                            (isSegment && ReadSegmentLine(*shares, size, annotation));
        return isRead ? std::optional(std::move(annotation)) : std::nullopt;
    }

    /// The pictures in a folder below "images", and in those within it. Links aren't followed.
    [[nodiscard]] std::string AddFolder(const fs::path& relative, int depth)
    {
        const fs::path folder = m_folder / "images" / relative;
        const FileList list = ListFiles(folder, {".png", ".bmp", ".jpg", ".jpeg", ".webp", ".tif", ".tiff"});
        if (!list.error.empty())
            return "the folder images can't be read";
        for (const fs::path& file : list.files)
            m_pictures.push_back(relative / file.filename());
        std::vector<fs::path> folders;
        std::error_code error;
        for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
             entry.increment(error))
            if (entry->symlink_status(error).type() == fs::file_type::directory)
                folders.push_back(entry->path().filename());
        std::sort(folders.begin(), folders.end());
        std::string failure = depth == s_maxDepth && !folders.empty() ? "the folder images is too deep" : "";
        for (const fs::path& inner : folders)
            if (failure.empty())
                failure = AddFolder(relative / inner, depth + 1);
        return failure;
    }

    fs::path m_folder;
    std::vector<fs::path> m_pictures; ///< below "images"
    std::vector<std::string> m_classes;
};

} // namespace

std::unique_ptr<Importer> MakeYoloImporter(const std::filesystem::path& folder)
{
    return std::make_unique<YoloImporter>(folder);
}

} // namespace Orvik::Data
