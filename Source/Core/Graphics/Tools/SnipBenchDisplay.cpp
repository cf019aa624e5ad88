#include "Core/Graphics/Tools/SnipBenchDisplay.h"

#include "Core/System/Device/Display/DisplayCache.h"
#include "Core/System/Runtime/Application.h"

namespace Orvik::Graphics::Tools
{

using System::Device::Display::DisplayDescriptor;

// A picture from a file can be shown where there is no display system.
const DisplayDescriptor* FindDisplay(std::uint16_t id)
{
    using System::Device::Display::DisplayCache;
    using System::Runtime::Application;
    const DisplayCache* const cache =
        Application::FindInstance() != nullptr ? Application::TryGetSystem<DisplayCache>() : nullptr;
    return cache != nullptr ? cache->GetDisplay(id) : nullptr;
}

System::Math::Point GetDisplayOrigin(const System::Tools::ToolContext& context)
{
    const DisplayDescriptor* const display = FindDisplay(context.displayIds[1]);
    if (display == nullptr)
        return {0, 0};

    const DisplayDescriptor* const host = display->hostDisplayId != System::Device::Display::InvalidDisplayId
                                              ? FindDisplay(display->hostDisplayId)
                                              : nullptr;
    if (host == nullptr)
        return {display->x, display->y};
    return {display->x + host->x, display->y + host->y};
}

} // namespace Orvik::Graphics::Tools
