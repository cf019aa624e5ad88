#pragma once

#include "Core/System/Log/Context.h"
#include "Core/System/Runtime/System.h"
#include "Core/System/Types/Rectangle.h"
#include "Desktops/DisplayDescriptor.h"

#include <cstdint>
#include <vector>

namespace Orvik::System::Device::Display
{

/// The displays of the desktop, as they were at initialisation. Read-only from then on.
class DisplayCache final
    : public Runtime::SystemBase<DisplayCache, "DisplayCache", 12, GUID{0x2741C9268DCB47A2, 0x9DE7F385B2457F35},
                                 Runtime::EmptyConfig>
{
public:
    static constexpr std::uint32_t s_typeID = 0xC1F295C4;

    DisplayCache();
    ~DisplayCache() override;

    [[nodiscard]] bool Initialize(const Runtime::IConfig* config) override;
    void OnConfigured() override;

    /// The display of the window that was in the foreground at the start, or `InvalidDisplayId`.
    [[nodiscard]] std::uint16_t GetActiveDisplayId() const { return m_activeDisplayId; }

    /// The active display, else the primary one, else the first, else `InvalidDisplayId`.
    [[nodiscard]] std::uint16_t GetDefaultDisplayId() const;

    /// The display with that id, or null. Stays valid for the life of the cache.
    [[nodiscard]] const DisplayDescriptor* GetDisplay(std::uint16_t id) const;

    /// The smallest rectangle around all displays and the origin of the virtual desktop.
    [[nodiscard]] const Math::Rectangle& GetDesktopBounds() const { return m_desktopBounds; }

    [[nodiscard]] const std::vector<DisplayDescriptor>& GetDisplays() const { return m_displays; }

private:
    /// Connects the log lines to their stream and to its configuration.
    void BindLogStream();
    /// Fills the records from the desktop's list.
    void IterateThroughDevices();
    void LogDisplay(const DisplayDescriptor& display) const;

    std::uint16_t m_primaryDisplayId = InvalidDisplayId;
    std::uint16_t m_activeDisplayId = InvalidDisplayId;
    Math::Rectangle m_desktopBounds;
    std::vector<DisplayDescriptor> m_displays;
    /// Not a constant as in other units: this System follows the configured severity of its stream.
    Log::Context m_logContext;
};

} // namespace Orvik::System::Device::Display
