#include "Data/Painting/Marks.h"

#include <algorithm>
#include <string>

namespace Orvik::Data
{
namespace
{

constexpr std::int32_t s_tagMargin = 3;

/// On top of the box, within the picture. Where there is no room, inside of the box.
void DrawTag(System::Multimedia::Bitmap& picture, const System::Math::Rectangle& box, const Colour& colour,
             const std::string& name, TextPen& pen)
{
    const std::int32_t width = pen.GetWidth(name) + 2 * s_tagMargin;
    const std::int32_t height = pen.GetHeight();
    const std::int32_t left = std::max(std::min(box.left, picture.GetWidth() - width), 0);
    const std::int32_t top = box.top >= height ? box.top - height : box.top;
    FillArea(picture, {left, top, left + width, top + height}, colour);
    pen.Write(picture, left + s_tagMargin, top, GetTextColour(colour), name);
}

} // namespace

void DrawMarks(System::Multimedia::Bitmap& picture, const std::vector<Annotation>& annotations, TextPen* pen,
               std::int32_t thickness)
{
    for (const Annotation& annotation : annotations)
    {
        const Colour colour = GetLabelColour(annotation.label);
        DrawBox(picture, annotation.box, colour, annotation.ring.empty() ? thickness : 1);
        DrawRing(picture, annotation.ring, colour, thickness);
    }
    if (pen == nullptr)
        return;
    for (std::size_t i = 0; i < annotations.size(); ++i) // over all boxes
    {
        const Annotation& annotation = annotations[i];
        const std::string name = annotation.label.empty() ? std::to_string(i + 1) : annotation.label;
        DrawTag(picture, annotation.box, GetLabelColour(annotation.label), name, *pen);
    }
}

} // namespace Orvik::Data
