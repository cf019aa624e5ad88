#pragma once

#include <vector>

namespace Orvik::Desktops
{

/// One vertical scroll axis of a pointing device: a number that grows while the wheel turns towards the user.
struct ScrollAxis
{
    int device = 0;
    int valuator = 0;
    double increment = 1.0; ///< how far the number moves in one notch; negative where the device counts the other way
    double position = 0.0;  ///< the number as last seen
};

/// Converts the absolute positions that devices report to notches.
class ScrollAxes
{
public:
    /// Keeps only these axes. An axis without an increment can't be scaled and is left out.
    void Assign(std::vector<ScrollAxis> axes);

    /// The same for one device; the others stay as they are.
    void Replace(int device, const std::vector<ScrollAxis>& axes);

    [[nodiscard]] bool HasDevice(int device) const;
    [[nodiscard]] bool HasAxis(int device, int valuator) const;

    /// Moves an axis and returns the distance in notches, positive away from the user; 0 for an unknown axis.
    [[nodiscard]] float Move(int device, int valuator, double position);

private:
    std::vector<ScrollAxis> m_axes;
};

} // namespace Orvik::Desktops
