#include "Core/System/Desktop/GraphicsCard.h"

#include "Core/System/Platform/NullDesktop.h"

namespace Orvik::System::Desktop
{

GraphicsCard FindGraphicsCard()
{
    if (Platform::NullDesktop::GetInstance().hasGraphicsCard)
        return {true, "the null desktop has a graphics card"};
    return {false, "the null desktop has no graphics card"};
}

} // namespace Orvik::System::Desktop
