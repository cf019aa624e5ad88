#pragma once

#include "Data/Painting/TextPen.h"
#include "Data/Records/Record.h"

namespace Orvik::Data
{

/// Draws the boxes and rings of a picture's annotations on it, in the colours of their labels. With `pen`, which may be
/// null, each box bears its label, and its number where it has none.
void DrawMarks(System::Multimedia::Bitmap& picture, const std::vector<Annotation>& annotations, TextPen* pen,
               std::int32_t thickness);

} // namespace Orvik::Data
