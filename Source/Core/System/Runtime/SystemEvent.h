#pragma once

#include "Core/System/Error/Assertion.h"

#include <cstdint>

namespace Orvik::System::Runtime
{

/// An event for Systems. A concrete event derives from it and names its id as `TypeID_V`.
struct SystemEvent
{
    explicit constexpr SystemEvent(std::uint32_t typeId) noexcept : m_eventTypeID(typeId) {}

    std::uint32_t m_eventTypeID;

    /// The event as the concrete type. An assertion failure if its id is that of another type.
    template <typename Event>
    [[nodiscard]] const Event& As() const
    {
        constexpr std::uint32_t TypeID_V = Event::TypeID_V;
        ORVIK_ASSERT(m_eventTypeID == TypeID_V, "Type of both types must match.");
        return static_cast<const Event&>(*this);
    }
};

/// The id of the event base type, for hooks that get a type.
inline constexpr std::uint32_t SystemEventBaseTypeID = 0x6C1D0F86;

/// Asks a System to stop.
struct ShutdownEvent : SystemEvent
{
    static constexpr std::uint32_t TypeID_V = 0xAF5F1452;

    constexpr ShutdownEvent() noexcept : SystemEvent(TypeID_V) {}
};

} // namespace Orvik::System::Runtime
