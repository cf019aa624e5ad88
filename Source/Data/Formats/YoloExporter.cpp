// YOLO: beside each picture in "images" a text file in "labels" with a line for each annotation, in shares of the
// picture's size, and one YAML file with the names of the classes.
#include "Data/Formats/Exporter.h"
#include "Data/Formats/SetLists.h"
#include "Data/Formats/Yaml.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <system_error>

namespace Orvik::Data
{
namespace
{

namespace fs = std::filesystem;

/// Eight digits give each pixel of the largest picture back.
void AddShare(std::string& line, double pixels, std::int32_t size)
{
    fmt::format_to(std::back_inserter(line), " {:.8f}", pixels / size);
}

void AddCorner(std::string& line, const System::Math::Point& corner, const Record& record)
{
    AddShare(line, corner.x, record.width);
    AddShare(line, corner.y, record.height);
}

Ring GetBoxCorners(const System::Math::Rectangle& box)
{
    return {{box.left, box.top}, {box.right, box.top}, {box.right, box.bottom}, {box.left, box.bottom}};
}

std::string MakeBoxLine(std::size_t number, const Annotation& annotation, const Record& record)
{
    const System::Math::Rectangle& box = annotation.box;
    std::string line = std::to_string(number);
    AddShare(line, (box.left + box.right) / 2.0, record.width);
    AddShare(line, (box.top + box.bottom) / 2.0, record.height);
    AddShare(line, box.GetWidth(), record.width);
    AddShare(line, box.GetHeight(), record.height);
    return line + "\n";
}

/// Readers take all lines of a file for segments once one is. So a box stands as its corners there, from the top left
/// one on to the right. A polygon with just these corners repeats the first at the end.
std::string MakeSegmentLine(std::size_t number, const Annotation& annotation, const Record& record)
{
    const Ring corners = GetBoxCorners(annotation.box);
    Ring ring = annotation.ring;
    if (ring.empty())
        ring = corners;
    else if (ring.size() != corners.size() + 1 || !std::equal(corners.begin(), corners.end(), ring.begin()))
        ring = GetOpenRing(ring);
    std::string line = std::to_string(number);
    for (const System::Math::Point& corner : ring)
        AddCorner(line, corner, record);
    return line + "\n";
}

std::string MakeLabels(const ExportedPicture& picture)
{
    const Record& record = picture.record;
    const bool hasRings = std::any_of(record.annotations.begin(), record.annotations.end(),
                                      [](const Annotation& annotation) { return !annotation.ring.empty(); });
    std::string text;
    for (std::size_t i = 0; i < record.annotations.size(); ++i)
    {
        const auto make = hasRings ? &MakeSegmentLine : &MakeBoxLine;
        text += make(picture.classes[i], record.annotations[i], record);
    }
    return text;
}

class YoloExporter : public Exporter
{
public:
    explicit YoloExporter(const ExportTarget& target)
        : m_target(target),
          m_lists(target.folder, target.isSplit ? std::vector<SetLists::List>{{"train.txt", {Subset::Train}},
                                                                              {"val.txt", {Subset::Validation}},
                                                                              {"test.txt", {Subset::Test}}}
                                                : std::vector<SetLists::List>())
    {
    }

    std::string Begin() override
    {
        std::string error = MakeFolder(m_target.folder / "images");
        if (error.empty())
            error = MakeFolder(m_target.folder / "labels");
        std::error_code ignored;
        if (error.empty() && !m_target.mayReplace && fs::exists(m_target.folder / "data.yaml", ignored))
            error = "data.yaml exists already; --force replaces it";
        return error.empty() ? m_lists.Begin(m_target.mayReplace) : error;
    }

    std::string WriteFiles(const ExportedPicture& picture) const override
    {
        std::string error = m_target.output.Copy(picture.source, m_target.folder / "images" / picture.name);
        if (!error.empty())
            return error;
        const fs::path labels = m_target.folder / "labels" / (picture.record.id + ".txt");
        return m_target.output.SaveText(labels, MakeLabels(picture));
    }

    std::string Add(const ExportedPicture& picture) override
    {
        return m_lists.Add("./images/" + picture.name, picture.subset);
    }

    std::string Finish() override
    {
        const std::string error = m_lists.Finish(m_target.output);
        if (!error.empty())
            return error;
        std::string text = "path: .\n";
        text += m_target.isSplit ? "train: train.txt\nval: val.txt\ntest: test.txt\n" : "train: images\nval: images\n";
        text += fmt::format("nc: {}\n", m_target.classes.GetNames().size());
        return m_target.output.SaveText(m_target.folder / "data.yaml",
                                        text + MakeYamlNames(m_target.classes.GetNames()));
    }

private:
    ExportTarget m_target;
    SetLists m_lists;
};

} // namespace

std::unique_ptr<Exporter> MakeYoloExporter(const ExportTarget& target)
{
    return std::make_unique<YoloExporter>(target);
}

} // namespace Orvik::Data
