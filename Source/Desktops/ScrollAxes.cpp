#include "Desktops/ScrollAxes.h"

#include <algorithm>
#include <utility>

namespace Orvik::Desktops
{
namespace
{

bool HasNoIncrement(const ScrollAxis& axis)
{
    return axis.increment == 0.0;
}

} // namespace

void ScrollAxes::Assign(std::vector<ScrollAxis> axes)
{
    m_axes = std::move(axes);
    std::erase_if(m_axes, HasNoIncrement);
}

void ScrollAxes::Replace(int device, const std::vector<ScrollAxis>& axes)
{
    std::erase_if(m_axes, [device](const ScrollAxis& axis) { return axis.device == device; });
    m_axes.insert(m_axes.end(), axes.begin(), axes.end());
    std::erase_if(m_axes, HasNoIncrement);
}

bool ScrollAxes::HasDevice(int device) const
{
    return std::any_of(m_axes.begin(), m_axes.end(),
                       [device](const ScrollAxis& axis) { return axis.device == device; });
}

bool ScrollAxes::HasAxis(int device, int valuator) const
{
    return std::any_of(m_axes.begin(), m_axes.end(),
                       [device, valuator](const ScrollAxis& axis)
                       { return axis.device == device && axis.valuator == valuator; });
}

float ScrollAxes::Move(int device, int valuator, double position)
{
    for (ScrollAxis& axis : m_axes)
    {
        if (axis.device != device || axis.valuator != valuator)
            continue;
        const double distance = position - axis.position;
        axis.position = position;
        return static_cast<float>(-distance / axis.increment);
    }
    return 0.0F;
}

} // namespace Orvik::Desktops
