#include "Desktops/Wayland/Output.h"

#include <cmath>
#include <utility>
#include <wayland-client.h>
#include <xdg-output-unstable-v1-client-protocol.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

OutputDescription& GetDescription(void* data)
{
    return *static_cast<OutputDescription*>(data);
}

void OnGeometry(void* data, wl_output* /*output*/, std::int32_t x, std::int32_t y, std::int32_t /*millimetersWide*/,
                std::int32_t /*millimetersHigh*/, std::int32_t /*subpixel*/, const char* /*make*/, const char* model,
                std::int32_t transform)
{
    OutputDescription& description = GetDescription(data);
    description.transform = transform;
    description.model = model;
    // Where the compositor reports its space, this place is a guess of the compositor's.
    if (description.logicalWidth != 0)
        return;
    description.x = x;
    description.y = y;
}

void OnMode(void* data, wl_output* /*output*/, std::uint32_t flags, std::int32_t width, std::int32_t height,
            std::int32_t refreshRate)
{
    if ((flags & WL_OUTPUT_MODE_CURRENT) == 0)
        return;
    OutputDescription& description = GetDescription(data);
    description.modeWidth = width;
    description.modeHeight = height;
    description.refreshRate = refreshRate;
}

constexpr wl_output_listener s_outputListener = {
    .geometry = &OnGeometry,
    .mode = &OnMode,
    .done = [](void*, wl_output*) {},
    .scale = [](void* data, wl_output*, std::int32_t factor) { GetDescription(data).scale = factor; },
    .name = [](void* data, wl_output*, const char* name) { GetDescription(data).name = name; },
    .description = [](void*, wl_output*, const char*) {},
};

constexpr zxdg_output_v1_listener s_placeListener = {
    .logical_position =
        [](void* data, zxdg_output_v1*, std::int32_t x, std::int32_t y)
    {
        GetDescription(data).x = x;
        GetDescription(data).y = y;
    },
    .logical_size =
        [](void* data, zxdg_output_v1*, std::int32_t width, std::int32_t height)
    {
        GetDescription(data).logicalWidth = width;
        GetDescription(data).logicalHeight = height;
    },
    .done = [](void*, zxdg_output_v1*) {},
    .name =
        [](void* data, zxdg_output_v1*, const char* name)
    {
        if (GetDescription(data).name.empty())
            GetDescription(data).name = name;
    },
    .description = [](void*, zxdg_output_v1*, const char*) {},
};

} // namespace

double OutputDescription::GetScale() const
{
    constexpr double unit = 120.0;
    if (logicalWidth <= 0 || logicalHeight <= 0)
        return scale;
    // By the longer side: the logical sizes are cut to whole pixels.
    const bool isWide = logicalWidth >= logicalHeight;
    const double exact =
        isWide ? static_cast<double>(GetWidth()) / logicalWidth : static_cast<double>(GetHeight()) / logicalHeight;
    return std::round(exact * unit) / unit;
}

bool OutputDescription::IsPossible() const
{
    const auto isPlace = [](std::int32_t place) { return std::in_range<std::int16_t>(place); };
    const auto isSize = [](std::int32_t size) { return std::in_range<std::uint16_t>(size); };
    return isPlace(x) && isPlace(y) && isSize(modeWidth) && isSize(modeHeight) && isSize(logicalWidth) &&
           isSize(logicalHeight);
}

System::Math::Rectangle OutputDescription::GetArea() const
{
    if (!IsPossible())
        return {};
    return {x, y, x + GetWidth(), y + GetHeight()};
}

Output::Output(wl_output* output, std::uint32_t globalName) : m_output(output), m_globalName(globalName)
{
    wl_output_add_listener(m_output, &s_outputListener, &m_description);
}

Output::~Output()
{
    if (m_place != nullptr)
        zxdg_output_v1_destroy(m_place);
    if (wl_output_get_version(m_output) >= WL_OUTPUT_RELEASE_SINCE_VERSION)
        wl_output_release(m_output);
    else
        wl_output_destroy(m_output);
}

void Output::AskForPlace(zxdg_output_manager_v1* manager)
{
    if (manager == nullptr || m_place != nullptr)
        return;
    m_place = zxdg_output_manager_v1_get_xdg_output(manager, m_output);
    zxdg_output_v1_add_listener(m_place, &s_placeListener, &m_description);
}

} // namespace Orvik::Desktops::Wayland
