#include "Tests/Support/Overlay/PolylineModel.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Orvik::Tests
{
namespace
{

constexpr std::uint32_t s_polygon = 0xFF8D41B8U;
constexpr std::uint32_t s_crosshair = 0xFFFFFFFFU;
constexpr double s_half = 0.5;
/// How far from a corner its look is left open: how two parts meet is up to what draws them.
constexpr double s_joint = 3.0;
/// How far a pixel's middle is from a line that still touches a corner of it.
constexpr double s_reach = 1.25;
constexpr int s_samples = 4;
/// Four samples are this far from the true cover at the most.
constexpr double s_sampleError = 0.5;

/// A part of a pixel in the line, and the crosshair's white over it.
std::uint32_t Mix(std::uint32_t below, double part, double cover)
{
    Look pixel(1, 1, below);
    pixel.Mix(0, 0, s_polygon, part);
    pixel.Mix(0, 0, s_crosshair, cover);
    return pixel.At(0, 0);
}

/// Each of two mixtures may be rounded up or down.
bool IsSimilar(std::uint32_t left, std::uint32_t right)
{
    constexpr int rounding = 2;
    for (int shift = 0; shift < 24; shift += 8)
        if (std::abs(static_cast<int>(left >> shift & 0xFF) - static_cast<int>(right >> shift & 0xFF)) > rounding)
            return false;
    return true;
}

} // namespace

PolylineModel::PolylineModel(std::vector<Position> points) : m_points(std::move(points))
{
    for (std::size_t index = 1; index < m_points.size(); ++index)
    {
        const Position& from = m_points[index - 1];
        const Position& to = m_points[index];
        if (from == to)
            continue;
        // A level part covers the pixels of its row, so its middle is half a pixel lower; an upright one likewise.
        const double right = from.x == to.x ? s_half : 0.0;
        const double down = from.y == to.y ? s_half : 0.0;
        m_parts.push_back({{from.x + right, from.y + down}, {to.x + right, to.y + down}, right + down > 0.0});
    }
}

double PolylineModel::GetDistance(const Part& part, Place place)
{
    const double x = part.to.x - part.from.x;
    const double y = part.to.y - part.from.y;
    const double along = ((place.x - part.from.x) * x + (place.y - part.from.y) * y) / (x * x + y * y);
    const double nearest = std::clamp(along, 0.0, 1.0);
    return std::hypot(place.x - part.from.x - nearest * x, place.y - part.from.y - nearest * y);
}

double PolylineModel::GetCoverage(int x, int y) const
{
    constexpr int steps = 8;
    int inside = 0;
    for (int row = 0; row < steps; ++row)
        for (int column = 0; column < steps; ++column)
        {
            const Place place = {x + (column + s_half) / steps, y + (row + s_half) / steps};
            inside += std::any_of(m_parts.begin(), m_parts.end(),
                                  [&](const Part& part) { return GetDistance(part, place) <= s_half; })
                          ? 1
                          : 0;
        }
    return static_cast<double>(inside) / (steps * steps);
}

bool PolylineModel::IsAtJoint(int x, int y) const
{
    return std::any_of(m_points.begin(), m_points.end(),
                       [&](const Position& point)
                       { return std::hypot(x + s_half - point.x, y + s_half - point.y) <= s_joint; });
}

std::vector<bool> PolylineModel::FindNear(const Look& look) const
{
    constexpr int margin = 4;
    std::vector<bool> near(look.isText.size());
    for (const Part& part : m_parts)
    {
        const auto [left, right] = std::minmax(part.from.x, part.to.x);
        const auto [top, bottom] = std::minmax(part.from.y, part.to.y);
        for (int y = static_cast<int>(top) - margin; y <= static_cast<int>(bottom) + margin; ++y)
            for (int x = static_cast<int>(left) - margin; x <= static_cast<int>(right) + margin; ++x)
                if (look.IsInside(x, y) && (IsAtJoint(x, y) || GetDistance(part, {x + s_half, y + s_half}) < s_reach))
                    near[look.GetIndex(x, y)] = true;
    }
    return near;
}

bool PolylineModel::HasSlantedNear(int x, int y) const
{
    const Place middle = {x + s_half, y + s_half};
    return std::any_of(m_parts.begin(), m_parts.end(),
                       [&](const Part& part) { return !part.isLevel && GetDistance(part, middle) < s_reach; });
}

bool PolylineModel::IsRight(std::uint32_t below, std::uint32_t seen, double cover, int x, int y)
{
    const bool isOpen = IsAtJoint(x, y);
    const double coverage = isOpen ? 0.0 : GetCoverage(x, y);
    double best = 2.0;
    for (int samples = 0; samples <= s_samples; ++samples)
    {
        const double part = static_cast<double>(samples) / s_samples;
        if (IsSimilar(Mix(below, part, cover), seen))
            best = std::min(best, std::abs(part - coverage));
    }
    if (best > 1.0)
        return false; // no mixture of the two
    if (isOpen)
        return true;
    if (!HasSlantedNear(x, y))
        return best < 1.0 / s_samples;
    m_errorSum += best;
    ++m_slantedCount;
    return best <= s_sampleError;
}

void PolylineModel::Paint(Look& look, const Look& below, const Picture& shown,
                          const std::function<double(int x, int y)>& getCover)
{
    const std::vector<bool> near = FindNear(look);
    for (int y = 0; y < look.picture.height; ++y)
        for (int x = 0; x < look.picture.width; ++x)
        {
            const std::size_t index = look.GetIndex(x, y);
            const double cover = near[index] ? getCover(x, y) : 1.0;
            if (cover >= 1.0)
                continue;
            const std::uint32_t seen = shown.pixels[index];
            const std::uint32_t ground = below.picture.pixels[index];
            // A text lies over both, and has a tolerance of its own.
            const bool isRight = look.isText[index] != 0 || IsRight(ground, seen, cover, x, y);
            look.At(x, y) = isRight ? seen : Mix(ground, GetCoverage(x, y), cover);
        }
}

} // namespace Orvik::Tests
