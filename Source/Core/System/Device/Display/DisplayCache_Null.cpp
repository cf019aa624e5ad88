#include "Core/System/Device/Display/DisplayCache.h"

#include "Core/System/Platform/NullDesktop.h"

namespace Orvik::System::Device::Display
{

bool DisplayCache::InitializePlatform()
{
    IterateThroughDevices();
    return true;
}

void DisplayCache::IterateThroughDevicesPlatform()
{
    const Platform::NullDesktop& desktop = Platform::NullDesktop::GetInstance();
    for (const DisplayDescriptor& found : desktop.displays)
    {
        DisplayDescriptor& display = AddDisplay();
        const std::uint16_t id = display.id;
        display = found;
        display.id = id;
    }
    m_activeDisplayId = desktop.activeDisplayId;
}

} // namespace Orvik::System::Device::Display
