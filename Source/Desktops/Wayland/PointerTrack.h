#pragma once

// Wayland's own, but without anything of it.

#include "Core/System/Types/Point.h"
#include "Desktops/Wayland/InputEvent.h"
#include "Desktops/WindowDescription.h"

#include <optional>

namespace Orvik::Desktops::Wayland
{

/// One coordinate of the program's own pointer. It follows the compositor's at the distance that the program has
/// brought between the two, and goes on where an edge holds the other up.
class PointerAxis
{
public:
    /// The side has so many pixels on so many units of the surface.
    void SetSpace(std::uint32_t pixels, double units);

    /// Puts it where the compositor's is.
    void Enter(double place);
    /// The compositor's is at a place, and from there this one follows it at the distance that it has to it.
    void Attach(double place);
    /// The compositor's is at a place now; `relative` says how far its device wanted it to go, where that is known.
    void Move(double place, const std::optional<double>& relative);
    /// The compositor's stays where it is, and its device goes on that far. Only against an edge this is a motion:
    /// elsewhere some compositors say the way ahead of the place.
    void Push(double way);
    /// Puts it on a pixel, at most at the edge, and the compositor's stays where it is.
    void Place(std::int32_t pixel);

    [[nodiscard]] std::int32_t GetPixel() const;

private:
    [[nodiscard]] double Clamp(double coordinate) const;
    /// The place that the compositor means by the one that it reports. At the far edge some hold the pointer up just
    /// before the end, or report that rounded up to the end itself; and so each place from there on.
    [[nodiscard]] double Read(double place);
    void Go(double place, const std::optional<double>& relative);
    /// The own one is where the program has put it, and the compositor's stays where it is.
    void KeepDistance();
    [[nodiscard]] bool IsAtEdge(double place) const;

    std::uint32_t m_pixels = 1;
    double m_units = 1.0;
    double m_scale = 1.0;  ///< pixels to a unit
    double m_place = 0.0;  ///< the compositor's, units
    double m_own = 0.0;    ///< pixels
    double m_offset = 0.0; ///< from the compositor's to the own one, pixels
    double m_raise = 0.0;  ///< what the compositor's are rounded up by, units
    double m_excess = 0.0; ///< how far it has gone on while the compositor's was held up, pixels
};

/// The program's own pointer on a surface, in pixels; the compositor's is reported in units of the surface, to
/// fractions. The compositor's can't be moved by a program, and arrow keys move the own one by pixels.
class PointerTrack
{
public:
    /// The surface has `size` pixels on so many units.
    void SetSpace(const WindowSize& size, const SurfaceVector& units);

    /// The compositor's pointer has come to the surface: the own one is there. If the program has placed it before
    /// there was any, it stays: some compositors report the first entry late, with the first motion.
    void Enter(const SurfaceVector& place);

    /// The compositor's pointer is at a place now; `relative` says how far its device wanted it to go, where that is
    /// known.
    void Move(const SurfaceVector& place, const std::optional<SurfaceVector>& relative);

    /// The compositor's pointer stays where it is, and its device goes on that far.
    void Push(const SurfaceVector& way);

    /// Moves the own pointer to a pixel, at most to the surface's edge.
    void Place(const System::Math::Point& pixel);

    /// The pixel that the own pointer is on. Before there is a pointer it is the one in the middle.
    [[nodiscard]] System::Math::Point GetPixel() const { return {m_x.GetPixel(), m_y.GetPixel()}; }

private:
    PointerAxis m_x;
    PointerAxis m_y;
    bool m_hasEntered = false;
    bool m_isPlaced = false; ///< by the program
};

} // namespace Orvik::Desktops::Wayland
