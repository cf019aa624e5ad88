#pragma once

// Wayland's own, but without anything of it.

#include "Core/System/Math/Point.h"
#include "Desktops/Wayland/InputEvent.h"
#include "Desktops/WindowDescription.h"

#include <vector>

namespace Orvik::Desktops::Wayland
{

/// The program's own pointer on a surface, in pixels. It follows the compositor's, which is told in units of the
/// surface, and steps aside from it where the program moves it: the compositor may take such a step over or not, and
/// doesn't say which. What it did is seen by the next motion.
class PointerTrack
{
public:
    /// The surface has `size` pixels on so many units.
    void SetSpace(const WindowSize& size, const SurfaceVector& units);

    /// The compositor's pointer has come to the surface: the own one is there.
    void Enter(const SurfaceVector& place);

    /// The compositor's pointer is at a place now; `relative` says how far its device wanted it to go, where that is
    /// known. The own one goes as far, also where an edge held the other up.
    void Move(const SurfaceVector& place, const std::optional<SurfaceVector>& relative);

    /// Moves the own pointer to a pixel, at most to the surface's edge. Returns the middle of that pixel, where the
    /// compositor's may be asked to go.
    SurfaceVector Place(const System::Math::Point& pixel);

    /// The pixel that the own pointer is on. At first the one in the middle.
    [[nodiscard]] System::Math::Point GetPixel() const;

    [[nodiscard]] bool HasEntered() const { return !m_places.empty(); }

private:
    [[nodiscard]] SurfaceVector ToPixels(const SurfaceVector& place) const;
    [[nodiscard]] std::vector<SurfaceVector>::iterator FindNearest(const SurfaceVector& place);
    /// The own one is beside the compositor's from here on, if that is at this place.
    void SetOffset(const SurfaceVector& place);
    /// Puts the own one beside the compositor's; `excess` is how far an edge held the latter up, in units.
    void Follow(const SurfaceVector& excess);

    WindowSize m_size = {1, 1};
    SurfaceVector m_scale = {1.0, 1.0};  ///< pixels to a unit
    SurfaceVector m_own;                 ///< pixels
    SurfaceVector m_offset;              ///< how far the own one is from the compositor's, pixels
    std::vector<SurfaceVector> m_places; ///< where the compositor's was last, and where it was asked to go since
};

} // namespace Orvik::Desktops::Wayland
