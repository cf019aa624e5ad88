#pragma once

#include "Tests/Support/Overlay/Look.h"

#include <functional>
#include <vector>

namespace Orvik::Tests
{

/// The line of a polygon that is being drawn: one pixel thick, through the upper left corners of its points' pixels.
/// Level and upright parts cover whole pixels. Other parts are smooth: a pixel has none, some or all of its four
/// samples in the line, and where exactly those are is up to what draws it. So this says how much of a pixel is
/// covered, and what may be seen then.
class PolylineModel
{
public:
    /// Screen pixels, y downward.
    explicit PolylineModel(std::vector<Position> points);

    /// Puts the line into `look`, between `below`, which is without the crosshair, and that: `getCover` says how much
    /// of its white is over a pixel, or that the pixel is hidden, which is 1. A pixel of `shown` that is right for its
    /// place on the line is taken over; another one is left for the comparison to find.
    void Paint(Look& look, const Look& below, const Picture& shown,
               const std::function<double(int x, int y)>& getCover);

    /// How many pixels away from its corners a slanted part touches, and the sum of how far what is seen of them is
    /// from what it covers, in parts of a pixel.
    [[nodiscard]] long GetSlantedCount() const { return m_slantedCount; }
    [[nodiscard]] double GetErrorSum() const { return m_errorSum; }

private:
    struct Place
    {
        double x = 0.0;
        double y = 0.0;
    };

    /// A part between two points, along its middle.
    struct Part
    {
        Place from;
        Place to;
        bool isLevel = false; ///< or upright
    };

    [[nodiscard]] static double GetDistance(const Part& part, Place place);
    [[nodiscard]] double GetCoverage(int x, int y) const;
    [[nodiscard]] bool IsAtJoint(int x, int y) const;
    /// For each pixel, whether the line may reach it.
    [[nodiscard]] std::vector<bool> FindNear(const Look& look) const;
    [[nodiscard]] bool HasSlantedNear(int x, int y) const;
    [[nodiscard]] bool IsRight(std::uint32_t below, std::uint32_t seen, double cover, int x, int y);

    std::vector<Position> m_points;
    std::vector<Part> m_parts;
    long m_slantedCount = 0;
    double m_errorSum = 0.0;
};

} // namespace Orvik::Tests
