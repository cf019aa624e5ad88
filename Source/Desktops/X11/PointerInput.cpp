#include "Desktops/X11/PointerInput.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

namespace Orvik::Desktops::X11
{
namespace
{

/// Calls `visit` with the number and the value of each valuator in the event.
template <typename Visitor>
void ForEachValuator(const XIDeviceEvent& event, Visitor visit)
{
    // The library puts them wherever the mask before them ends, which needn't be where a double can be read.
    const auto* place = reinterpret_cast<const std::byte*>(event.valuators.values);
    for (int valuator = 0; valuator < event.valuators.mask_len * 8; ++valuator)
    {
        if (!XIMaskIsSet(event.valuators.mask, valuator))
            continue;
        double value = 0.0;
        std::memcpy(&value, place, sizeof(value));
        place += sizeof(value);
        visit(valuator, value);
    }
}

double FindPosition(int valuator, XIAnyClassInfo* const* classes, int count)
{
    for (int index = 0; index < count; ++index)
    {
        if (classes[index]->type != XIValuatorClass)
            continue;
        const auto& info = *reinterpret_cast<const XIValuatorClassInfo*>(classes[index]);
        if (info.number == valuator)
            return info.value;
    }
    return 0.0;
}

std::vector<ScrollAxis> ReadAxes(int device, XIAnyClassInfo* const* classes, int count)
{
    std::vector<ScrollAxis> axes;
    for (int index = 0; index < count; ++index)
    {
        if (classes[index]->type != XIScrollClass)
            continue;
        const auto& info = *reinterpret_cast<const XIScrollClassInfo*>(classes[index]);
        if (info.scroll_type == XIScrollTypeVertical)
            axes.push_back({device, info.number, info.increment, FindPosition(info.number, classes, count)});
    }
    return axes;
}

} // namespace

PointerMotion GetPlace(const XIDeviceEvent& event)
{
    const auto toPixel = [](double coordinate) { return static_cast<std::int32_t>(std::floor(coordinate)); };
    return {event.event,
            {toPixel(event.event_x), toPixel(event.event_y)},
            {toPixel(event.root_x), toPixel(event.root_y)},
            event.serial};
}

PointerInput& PointerInput::GetInstance()
{
    static PointerInput s_instance;
    return s_instance;
}

void PointerInput::Initialize(::Display* display)
{
    if (m_isInitialized)
        return;
    m_isInitialized = true;
    int opcode = 0;
    int ignored = 0;
    int major = 2;
    int minor = 1;
    if (XQueryExtension(display, "XInputExtension", &opcode, &ignored, &ignored) == False)
        return;
    if (XIQueryVersion(display, &major, &minor) != Success || major * 10 + minor < 21)
        return;
    m_opcode = opcode;
    RefreshAxes(display);
}

void PointerInput::Select(::Display* display, ::Window window)
{
    Initialize(display);
    if (m_opcode == 0)
        return;
    std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> pointerMask = {};
    XISetMask(pointerMask.data(), XI_Motion);
    XISetMask(pointerMask.data(), XI_ButtonPress);
    XISetMask(pointerMask.data(), XI_ButtonRelease);
    XISetMask(pointerMask.data(), XI_Enter);
    XISetMask(pointerMask.data(), XI_DeviceChanged);
    std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> hierarchyMask = {};
    XISetMask(hierarchyMask.data(), XI_HierarchyChanged);
    constexpr auto length = static_cast<int>(pointerMask.size());
    std::array<XIEventMask, 2> masks = {
        {{XIAllMasterDevices, length, pointerMask.data()}, {XIAllDevices, length, hierarchyMask.data()}}};
    XISelectEvents(display, window, masks.data(), static_cast<int>(masks.size()));
}

bool PointerInput::IsInputEvent(const XEvent& event) const
{
    return m_opcode != 0 && event.type == GenericEvent && event.xcookie.extension == m_opcode;
}

bool PointerInput::IsMotionEvent(const XEvent& event) const
{
    return event.type == MotionNotify || (IsInputEvent(event) && event.xcookie.evtype == XI_Motion);
}

bool PointerInput::IsButtonEvent(const XEvent& event) const
{
    if (event.type == ButtonPress || event.type == ButtonRelease)
        return true;
    return IsInputEvent(event) && (event.xcookie.evtype == XI_ButtonPress || event.xcookie.evtype == XI_ButtonRelease);
}

std::optional<PointerMotion> PointerInput::ReadPlainMotion(const XEvent& event, const EventData& data) const
{
    if (event.type == MotionNotify)
    {
        const XMotionEvent& motion = event.xmotion;
        return PointerMotion{motion.window, {motion.x, motion.y}, {motion.x_root, motion.y_root}, motion.serial};
    }
    if (!IsInputEvent(event))
        return std::nullopt;
    const auto* const motion = data.Get<XIDeviceEvent>(XI_Motion);
    if (motion == nullptr || HasScroll(*motion))
        return std::nullopt;
    return GetPlace(*motion);
}

float PointerInput::TakeNotches(const XIDeviceEvent& event)
{
    float notches = 0.0F;
    ForEachValuator(event, [this, &event, &notches](int valuator, double position)
                    { notches += m_axes.Move(event.sourceid, valuator, position); });
    return notches;
}

bool PointerInput::IsEmulatedWheel(const XIDeviceEvent& event) const
{
    return (event.flags & XIPointerEmulated) != 0 && m_axes.HasDevice(event.sourceid);
}

void PointerInput::OnDeviceChanged(const XIDeviceChangedEvent& event)
{
    m_axes.Replace(event.sourceid, ReadAxes(event.sourceid, event.classes, event.num_classes));
}

void PointerInput::RefreshAxes(::Display* display)
{
    int count = 0;
    XIDeviceInfo* const devices = XIQueryDevice(display, XIAllDevices, &count);
    if (devices == nullptr)
        return;
    std::vector<ScrollAxis> axes;
    for (int index = 0; index < count; ++index)
    {
        const std::vector<ScrollAxis> found =
            ReadAxes(devices[index].deviceid, devices[index].classes, devices[index].num_classes);
        axes.insert(axes.end(), found.begin(), found.end());
    }
    XIFreeDeviceInfo(devices);
    m_axes.Assign(std::move(axes));
}

bool PointerInput::HasScroll(const XIDeviceEvent& event) const
{
    bool hasScroll = false;
    ForEachValuator(event, [this, &event, &hasScroll](int valuator, double /*position*/)
                    { hasScroll = hasScroll || m_axes.HasAxis(event.sourceid, valuator); });
    return hasScroll;
}

} // namespace Orvik::Desktops::X11
