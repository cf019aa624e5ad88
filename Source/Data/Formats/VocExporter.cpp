// VOC: an XML file in "Annotations" for each picture in "JPEGImages", and lists of pictures in "ImageSets/Main".
#include "Data/Formats/Exporter.h"
#include "Data/Formats/SetLists.h"
#include "Data/Formats/Xml.h"

#include <fmt/format.h>
#include <iterator>

namespace Orvik::Data
{
namespace
{

namespace fs = std::filesystem;

/// The corners stand in an element that the format doesn't know, and that its readers pass over. They are edges,
/// counted from 0, in either way to count.
std::string MakePolygon(const Ring& ring)
{
    std::string text = "        <polygon>\n";
    for (const System::Math::Point& corner : ring)
        fmt::format_to(std::back_inserter(text), "            <pt><x>{}</x><y>{}</y></pt>\n", corner.x, corner.y);
    return text + "        </polygon>\n";
}

std::string MakeObject(const Annotation& annotation, const std::string& name, std::int32_t first)
{
    const System::Math::Rectangle& box = annotation.box;
    std::string text = fmt::format("    <object>\n"
                                   "        <name>{}</name>\n"
                                   "        <pose>Unspecified</pose>\n"
                                   "        <truncated>0</truncated>\n"
                                   "        <difficult>0</difficult>\n"
                                   "        <bndbox>\n"
                                   "            <xmin>{}</xmin>\n"
                                   "            <ymin>{}</ymin>\n"
                                   "            <xmax>{}</xmax>\n"
                                   "            <ymax>{}</ymax>\n"
                                   "        </bndbox>\n",
                                   EscapeXml(name), box.left + first, box.top + first, box.right, box.bottom);
    if (!annotation.ring.empty())
        text += MakePolygon(annotation.ring);
    return text + "    </object>\n";
}

std::string MakeXml(const ExportedPicture& picture, const ClassList& classes, std::int32_t first)
{
    const Record& record = picture.record;
    std::string text = fmt::format("<annotation>\n"
                                   "    <folder>JPEGImages</folder>\n"
                                   "    <filename>{}</filename>\n"
                                   "    <source>\n"
                                   "        <database>SnipBench</database>\n"
                                   "    </source>\n"
                                   "    <size>\n"
                                   "        <width>{}</width>\n"
                                   "        <height>{}</height>\n"
                                   "        <depth>3</depth>\n"
                                   "    </size>\n"
                                   "    <segmented>0</segmented>\n",
                                   EscapeXml(picture.name), record.width, record.height);
    for (std::size_t i = 0; i < record.annotations.size(); ++i)
        text += MakeObject(record.annotations[i], classes.GetNames()[picture.classes[i]], first);
    return text + "</annotation>\n";
}

std::vector<SetLists::List> MakeLists(bool isSplit)
{
    if (!isSplit)
        return {{"trainval.txt", {}}};
    return {{"train.txt", {Subset::Train}},
            {"val.txt", {Subset::Validation}},
            {"trainval.txt", {Subset::Train, Subset::Validation}},
            {"test.txt", {Subset::Test}}};
}

class VocExporter : public Exporter
{
public:
    VocExporter(const ExportTarget& target, bool isZeroBased)
        : m_target(target),
          m_first(isZeroBased ? 0 : 1),
          m_lists(target.folder / "ImageSets" / "Main", MakeLists(target.isSplit))
    {
    }

    std::string Begin() override
    {
        for (const fs::path& folder :
             {m_target.folder / "JPEGImages", m_target.folder / "Annotations", m_target.folder / "ImageSets" / "Main"})
        {
            std::string error = MakeFolder(folder);
            if (!error.empty())
                return error;
        }
        return m_lists.Begin(m_target.mayReplace);
    }

    std::string WriteFiles(const ExportedPicture& picture) const override
    {
        std::string error = m_target.output.Copy(picture.source, m_target.folder / "JPEGImages" / picture.name);
        if (!error.empty())
            return error;
        const fs::path path = m_target.folder / "Annotations" / (picture.record.id + ".xml");
        return m_target.output.SaveText(path, MakeXml(picture, m_target.classes, m_first));
    }

    std::string Add(const ExportedPicture& picture) override { return m_lists.Add(picture.record.id, picture.subset); }

    /// The format keeps no order of its classes; a list of its own does.
    std::string Finish() override
    {
        const std::string error = m_lists.Finish(m_target.output);
        if (!error.empty())
            return error;
        return m_target.output.SaveText(ClassList::GetPath(m_target.folder), m_target.classes.MakeText());
    }

private:
    ExportTarget m_target;
    std::int32_t m_first; ///< of a row's pixels
    SetLists m_lists;
};

} // namespace

std::unique_ptr<Exporter> MakeVocExporter(const ExportTarget& target, bool isZeroBased)
{
    return std::make_unique<VocExporter>(target, isZeroBased);
}

} // namespace Orvik::Data
