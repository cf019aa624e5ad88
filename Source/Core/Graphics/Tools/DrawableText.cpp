#include "Core/Graphics/Tools/DrawableText.h"

namespace Orvik::Graphics::Tools
{

std::string ToDrawable(const std::string& text)
{
    std::string drawable;
    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char>(character);
        const bool isContinuation = (byte & 0xC0U) == 0x80U;
        if (byte < 0x80U)
            drawable.push_back(character);
        else if (!isContinuation)
            drawable.push_back('?');
    }
    return drawable;
}

} // namespace Orvik::Graphics::Tools
