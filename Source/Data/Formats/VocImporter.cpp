#include "Data/Formats/Importer.h"
#include "Data/Formats/Xml.h"

#include "Core/System/Text/Paths.h"
#include "Data/Records/ClassList.h"
#include "Data/Records/Folder.h"
#include "Data/Records/Names.h"
#include "Data/Records/RecordReader.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

namespace Orvik::Data
{
namespace
{

namespace fs = std::filesystem;

std::optional<double> GetNumber(const XmlElement& element, std::string_view child)
{
    const std::string_view text = element.GetText(child);
    double number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || stop != text.data() + text.size())
        return std::nullopt;
    return number;
}

std::optional<std::int32_t> GetPixels(const XmlElement& element, std::string_view child, double first)
{
    const std::optional<double> number = GetNumber(element, child);
    return number ? RoundPixels(*number - first) : std::nullopt;
}

/// Nothing if a corner isn't two numbers.
std::optional<Ring> ReadRing(const XmlElement& polygon)
{
    Ring ring;
    for (const XmlElement& corner : polygon.children)
    {
        const std::optional<std::int32_t> x = GetPixels(corner, "x", 0);
        const std::optional<std::int32_t> y = GetPixels(corner, "y", 0);
        if (corner.name != "pt" || !x || !y)
            return std::nullopt;
        ring.push_back({*x, *y});
    }
    return ring;
}

class VocImporter : public Importer
{
public:
    VocImporter(fs::path folder, bool isZeroBased) : m_folder(std::move(folder)), m_first(isZeroBased ? 0 : 1) {}

    std::string Open() override
    {
        FileList list = ListFiles(m_folder / "Annotations", {".xml"});
        if (!list.error.empty())
            return "the folder Annotations can't be read";
        m_files = std::move(list.files);
        const LoadedClasses loaded = LoadClasses(ClassList::GetPath(m_folder));
        m_classes = loaded.classes.GetNames();
        return loaded.error.empty() ? "" : "classes.txt: " + loaded.error;
    }

    std::size_t GetCount() const override { return m_files.size(); }
    fs::path GetPath(std::size_t index) const override { return m_files[index]; }
    const std::vector<std::string>& GetClasses() const override { return m_classes; }

    ImportedPicture Get(std::size_t index) const override
    {
        ImportedPicture picture;
        const std::optional<std::string> text = ReadTextFile(m_files[index], s_maxRecordBytes);
        const std::optional<XmlElement> root = text ? ReadXml(*text) : std::nullopt;
        if (!root || root->name != "annotation")
        {
            picture.error = "isn't the XML that was expected";
            return picture;
        }
        const std::string name(root->GetText("filename"));
        if (!IsFileName(name))
        {
            picture.error = "gives its picture a name that can't be used";
            return picture;
        }
        picture.name = name;
        picture.source = m_folder / "JPEGImages" / System::Text::PathFromUtf8(name);
        const XmlElement* const size = root->Find("size");
        if (size != nullptr)
        {
            picture.width = std::max(GetPixels(*size, "width", 0).value_or(0), 0);
            picture.height = std::max(GetPixels(*size, "height", 0).value_or(0), 0);
        }
        for (const XmlElement& child : root->children)
            if (child.name == "object" && picture.error.empty())
                picture.error = AddObject(child, picture);
        return picture;
    }

private:
    [[nodiscard]] std::string AddObject(const XmlElement& object, ImportedPicture& picture) const
    {
        Annotation annotation{{}, {}, std::string(object.GetText("name")), {}};
        const XmlElement* const bounds = object.Find("bndbox");
        if (!IsLabel(annotation.label) || bounds == nullptr)
            return "an object has no box, or a name that can't be a label";
        if (picture.annotations.size() >= s_maxAnnotations)
            return "has too many objects";
        const std::optional<std::int32_t> left = GetPixels(*bounds, "xmin", m_first);
        const std::optional<std::int32_t> top = GetPixels(*bounds, "ymin", m_first);
        const std::optional<std::int32_t> right = GetPixels(*bounds, "xmax", 0);
        const std::optional<std::int32_t> bottom = GetPixels(*bounds, "ymax", 0);
        const std::optional<System::Math::Rectangle> box =
            left && top && right && bottom ? FitBox({*left, *top, *right, *bottom}, picture.width, picture.height)
                                           : std::nullopt;
        if (!box)
            return "the box of an object is empty, or doesn't lie within the picture";
        annotation.box = *box;
        const XmlElement* const polygon = object.Find("polygon");
        if (polygon != nullptr)
        {
            std::optional<Ring> ring = ReadRing(*polygon);
            if (!ring || !TakeRing(annotation, std::move(*ring), picture.width, picture.height))
                ++picture.leftOut;
        }
        picture.annotations.push_back(std::move(annotation));
        return {};
    }

    fs::path m_folder;
    double m_first; ///< the number of a row's first pixel
    std::vector<fs::path> m_files;
    std::vector<std::string> m_classes;
};

} // namespace

std::unique_ptr<Importer> MakeVocImporter(const std::filesystem::path& folder, bool isZeroBased)
{
    return std::make_unique<VocImporter>(folder, isZeroBased);
}

} // namespace Orvik::Data
