#pragma once

#include "Core/System/Error/Assertion.h"

#include <cstdint>

namespace Orvik::System::Runtime
{

/// What Systems are told. A concrete event derives from it and names its id as `TypeID_V`.
struct SystemEvent
{
    explicit constexpr SystemEvent(std::uint32_t typeId) noexcept : m_eventTypeID(typeId) {}

    std::uint32_t m_eventTypeID;

    /// The event as the concrete type. Another type's id is an assertion failure.
    template <typename Event>
    [[nodiscard]] const Event& As() const
    {
        constexpr std::uint32_t TypeID_V = Event::TypeID_V;
        ORVIK_ASSERT(m_eventTypeID == TypeID_V, "Type of both types must match.");
        return static_cast<const Event&>(*this);
    }
};

/// The id that stands for the event base type where a hook is told the type.
inline constexpr std::uint32_t SystemEventBaseTypeID = 0x6C1D0F86;

/// Asks a System to stop.
struct ShutdownEvent : SystemEvent
{
    static constexpr std::uint32_t TypeID_V = 0xAF5F1452;

    constexpr ShutdownEvent() noexcept : SystemEvent(TypeID_V) {}
};

} // namespace Orvik::System::Runtime
