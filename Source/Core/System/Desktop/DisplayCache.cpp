#include "Core/System/Desktop/DisplayCache.h"

#include "Core/System/Desktop/DisplayOverlap.h"
#include "Core/System/Log/Log.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Types/Utilities.h"
#include "Desktops/Desktop.h"

#include <algorithm>
#include <utility>

namespace Orvik::System::Device::Display
{

DisplayCache::DisplayCache() = default;

DisplayCache::~DisplayCache()
{
    Log::Write(m_logContext, Log::MessageTypeID::Debug, "Display cache destroyed.");
}

bool DisplayCache::Initialize(const Runtime::IConfig* /*config*/)
{
    BindLogStream();
    if (!Desktops::GetDesktop().PrepareDisplays(m_logContext))
        return false;
    IterateThroughDevices();
    return true;
}

void DisplayCache::OnConfigured()
{
}

std::uint16_t DisplayCache::GetDefaultDisplayId() const
{
    if (m_activeDisplayId < InvalidDisplayId)
        return m_activeDisplayId;
    if (m_primaryDisplayId < InvalidDisplayId)
        return m_primaryDisplayId;
    return m_displays.empty() ? InvalidDisplayId : m_displays.front().id;
}

const DisplayDescriptor* DisplayCache::GetDisplay(std::uint16_t id) const
{
    return id == 0 || id > m_displays.size() ? nullptr : &m_displays[id - 1U];
}

void DisplayCache::BindLogStream()
{
    m_logContext.stream = Log::StreamID::DisplayCache;
    Log::UpdateContext(&m_logContext);
}

void DisplayCache::IterateThroughDevices()
{
    Desktops::DisplayList list = Desktops::GetDesktop().ListDisplays();
    m_displays = std::move(list.displays);
    for (std::size_t index = 0; index < m_displays.size(); ++index)
        m_displays[index].id = Types::SafeCast<std::uint16_t>(index + 1);
    m_activeDisplayId = list.foreground ? FindDisplayOfLargestOverlap(m_displays, *list.foreground) : list.activeId;
    for (const DisplayDescriptor& display : m_displays)
    {
        if (display.isPrimary)
            m_primaryDisplayId = display.id;
        m_desktopBounds.left = std::min<std::int32_t>(m_desktopBounds.left, display.x);
        m_desktopBounds.top = std::min<std::int32_t>(m_desktopBounds.top, display.y);
        m_desktopBounds.right = std::max(m_desktopBounds.right, display.x + display.width);
        m_desktopBounds.bottom = std::max(m_desktopBounds.bottom, display.y + display.height);
        LogDisplay(display);
    }
}

void DisplayCache::LogDisplay(const DisplayDescriptor& display) const
{
    const char* const kind = display.hostDisplayId != InvalidDisplayId ? " virtual" : "";
    const char* const primary = display.id == m_primaryDisplayId ? " primary" : "";
    const char* const end = display.id == m_activeDisplayId ? " active." : ".";
    Log::Write(m_logContext, Log::MessageTypeID::Always, "'", display.name, "' #", display.id, " (", display.x, ",",
               display.y, " ", display.width, "x", display.height, ")", kind, primary, end);
}

} // namespace Orvik::System::Device::Display
