#include "Data/Formats/Importer.h"
#include "Data/Formats/JsonLists.h"

#include "Core/System/Text/Paths.h"
#include "Data/Records/Names.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <unordered_map>
#include <utility>

namespace Orvik::Data
{
namespace
{

namespace fs = std::filesystem;
using rapidjson::Value;

const Value* FindMember(const Value& object, const char* name)
{
    const auto member = object.FindMember(name);
    return member == object.MemberEnd() ? nullptr : &member->value;
}

std::optional<std::int64_t> GetId(const Value& object, const char* name)
{
    const Value* const value = FindMember(object, name);
    return value != nullptr && value->IsInt64() ? std::optional(value->GetInt64()) : std::nullopt;
}

std::string GetText(const Value& object, const char* name)
{
    const Value* const value = FindMember(object, name);
    return value != nullptr && value->IsString() ? std::string(value->GetString(), value->GetStringLength()) : "";
}

std::int32_t GetSize(const Value& object, const char* name)
{
    const Value* const value = FindMember(object, name);
    return value != nullptr && value->IsInt() ? std::max(value->GetInt(), 0) : 0;
}

std::optional<std::vector<double>> GetNumbers(const Value* value, std::size_t most)
{
    if (value == nullptr || !value->IsArray() || value->Size() > most)
        return std::nullopt;
    std::vector<double> numbers;
    for (const Value& number : value->GetArray())
    {
        if (!number.IsNumber())
            return std::nullopt;
        numbers.push_back(number.GetDouble());
    }
    return numbers;
}

class CocoImporter : public Importer
{
public:
    explicit CocoImporter(fs::path folder) : m_folder(std::move(folder)), m_file(m_folder / "annotations.json") {}

    std::string Open() override
    {
        const std::string error =
            ReadJsonLists(m_file, {{"categories", [this](const Value& value) { return AddCategory(value); }},
                                   {"images", [this](const Value& value) { return AddImage(value); }}});
        if (!error.empty())
            return error;
        // Categories and pictures may stand after the annotations.
        for (const auto& [id, name] : m_categories)
        {
            m_classNumbers.emplace(id, m_classes.size());
            m_classes.push_back(name);
        }
        return ReadJsonLists(m_file, {{"annotations", [this](const Value& value) { return AddAnnotation(value); }}});
    }

    std::size_t GetCount() const override { return m_images.size(); }
    fs::path GetPath(std::size_t index) const override { return m_folder / "images" / Sanitize(m_images[index].name); }
    const std::vector<std::string>& GetClasses() const override { return m_classes; }

    ImportedPicture Get(std::size_t index) const override
    {
        const Image& image = m_images[index];
        ImportedPicture picture{m_folder / "images" / Sanitize(image.name),
                                image.name,
                                image.time,
                                image.width,
                                image.height,
                                {},
                                image.leftOut,
                                image.error};
        if (!IsRelativePath(image.name))
        {
            picture.error = fmt::format("the data set gives a picture a name that can't be used: {}", image.name);
            return picture;
        }
        for (const Mark& mark : image.marks)
        {
            Annotation annotation{{}, mark.box, m_classes[mark.category], {}};
            const std::optional<System::Math::Rectangle> box = FitBox(mark.box, image.width, image.height);
            if (box)
                annotation.box = *box;
            const bool hasRing = !mark.ring.empty() && TakeRing(annotation, mark.ring, image.width, image.height);
            picture.leftOut += mark.ring.empty() || hasRing ? 0 : 1;
            if (!box && !hasRing && picture.error.empty())
                picture.error = "the box of an annotation is empty, or doesn't lie within the picture";
            picture.annotations.push_back(std::move(annotation));
        }
        return picture;
    }

private:
    /// An annotation, in less memory than one with its own label.
    struct Mark
    {
        System::Math::Rectangle box;
        std::size_t category = 0;
        Ring ring; ///< open
    };

    struct Image
    {
        std::string name;
        std::string time;
        std::int32_t width = 0;
        std::int32_t height = 0;
        std::size_t leftOut = 0;
        std::string error;
        std::vector<Mark> marks;
    };

    /// The path of what has been checked; of anything else none.
    static fs::path Sanitize(const std::string& name)
    {
        return IsRelativePath(name) ? System::Text::PathFromUtf8(name) : fs::path();
    }

    std::string AddCategory(const Value& value)
    {
        const std::optional<std::int64_t> id = GetId(value, "id");
        std::string name = GetText(value, "name");
        if (!id)
            return "a category has no number";
        if (!IsLabel(name))
            return fmt::format("the name of category {} can't be a label", *id);
        if (m_categories.size() >= s_maxClasses)
            return fmt::format("there are more than {} categories", s_maxClasses);
        if (!m_categories.emplace(*id, std::move(name)).second)
            return fmt::format("category {} is there twice", *id);
        return {};
    }

    std::string AddImage(const Value& value)
    {
        const std::optional<std::int64_t> id = GetId(value, "id");
        if (!id)
            return "a picture has no number";
        if (!m_imageNumbers.emplace(*id, m_images.size()).second)
            return fmt::format("picture {} is there twice", *id);
        const std::string time = GetText(value, "date_captured");
        m_images.push_back({GetText(value, "file_name"),
                            IsTime(time) ? time : "",
                            GetSize(value, "width"),
                            GetSize(value, "height"),
                            0,
                            {},
                            {}});
        return {};
    }

    std::string AddAnnotation(const Value& value)
    {
        const std::optional<std::int64_t> imageId = GetId(value, "image_id");
        const auto number = imageId ? m_imageNumbers.find(*imageId) : m_imageNumbers.end();
        if (number == m_imageNumbers.end())
            return NameAnnotation(value) + " is of no picture in the file";
        Image& image = m_images[number->second];
        const std::string error = image.error.empty() ? AddMark(image, value) : "";
        if (!error.empty())
            image.error = NameAnnotation(value) + " " + error;
        return {};
    }

    static std::string NameAnnotation(const Value& value)
    {
        const std::optional<std::int64_t> id = GetId(value, "id");
        return id ? fmt::format("annotation {}", *id) : "an annotation";
    }

    /// What is wrong with the annotation, or nothing.
    std::string AddMark(Image& image, const Value& value) const
    {
        const std::optional<std::int64_t> category = GetId(value, "category_id");
        const auto number = category ? m_classNumbers.find(*category) : m_classNumbers.end();
        const std::optional<std::vector<double>> sides = GetNumbers(FindMember(value, "bbox"), 4);
        if (number == m_classNumbers.end())
            return "is of no category in the file";
        if (!sides || sides->size() != 4)
            return "has no box";
        if (image.marks.size() >= s_maxAnnotations)
            return fmt::format("is one too many for its picture: {} are the most", s_maxAnnotations);
        const std::optional<std::int32_t> left = RoundPixels((*sides)[0]);
        const std::optional<std::int32_t> top = RoundPixels((*sides)[1]);
        const std::optional<std::int32_t> right = RoundPixels((*sides)[0] + (*sides)[2]);
        const std::optional<std::int32_t> bottom = RoundPixels((*sides)[1] + (*sides)[3]);
        if (!left || !top || !right || !bottom)
            return "has a box beyond any picture";
        Mark mark{{*left, *top, *right, *bottom}, number->second, {}};
        const Value* const segmentation = FindMember(value, "segmentation");
        if (segmentation != nullptr && !ReadSegmentation(*segmentation, mark.ring))
            ++image.leftOut;
        image.marks.push_back(std::move(mark));
        return {};
    }

    /// False if there is one that isn't a single ring.
    static bool ReadSegmentation(const Value& segmentation, Ring& ring)
    {
        if (segmentation.IsArray() && segmentation.Empty())
            return true;
        if (!segmentation.IsArray() || segmentation.Size() != 1)
            return false;
        const std::optional<std::vector<double>> numbers = GetNumbers(&segmentation[0], 2 * s_maxCorners);
        if (!numbers || numbers->size() % 2 != 0)
            return false;
        for (std::size_t i = 0; i < numbers->size(); i += 2)
        {
            const std::optional<std::int32_t> x = RoundPixels((*numbers)[i]);
            const std::optional<std::int32_t> y = RoundPixels((*numbers)[i + 1]);
            if (!x || !y)
            {
                ring.clear();
                return false;
            }
            ring.push_back({*x, *y});
        }
        return true;
    }

    fs::path m_folder;
    fs::path m_file;
    std::map<std::int64_t, std::string> m_categories; ///< their numbers are their order
    std::vector<std::string> m_classes;
    std::unordered_map<std::int64_t, std::size_t> m_classNumbers;
    std::vector<Image> m_images;
    std::unordered_map<std::int64_t, std::size_t> m_imageNumbers;
};

} // namespace

std::unique_ptr<Importer> MakeCocoImporter(const std::filesystem::path& folder)
{
    return std::make_unique<CocoImporter>(folder);
}

} // namespace Orvik::Data
