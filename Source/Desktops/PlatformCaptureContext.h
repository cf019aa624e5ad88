#pragma once

#include "Core/System/Types/Buffer.h"
#include "Core/System/Types/Rectangle.h"
#include "Desktops/Failure.h"

namespace Orvik::Desktops
{

/// A desktop's part of a `CaptureContext`: reads a region of the screen. One thread.
class PlatformCaptureContext
{
public:
    PlatformCaptureContext() = default;
    PlatformCaptureContext(const PlatformCaptureContext&) = delete;
    PlatformCaptureContext& operator=(const PlatformCaptureContext&) = delete;
    virtual ~PlatformCaptureContext() = default; ///< gives everything back

    /// Gets the resources for copies of `region`, in screen pixels, both sides 1 to 65,535. Called once. False if the
    /// screen can't be read; nothing is logged.
    [[nodiscard]] virtual bool Initialize(const System::Math::Rectangle& region) = 0;

    /// Waits until a window that was just hidden is gone from the screen, and what is below it is drawn.
    virtual void AwaitRepaint() = 0;

    /// Copies the screen into its own pixels. Parts of the region outside of the screen become black.
    [[nodiscard]] virtual Failure CopyScreen() = 0;

    /// The pixels of the last copy, 4 bytes each: rows from the top, without padding, in the order blue, green, red and
    /// a byte without meaning.
    [[nodiscard]] virtual System::Types::Buffer<const unsigned char> GetPixels() const = 0;
};

} // namespace Orvik::Desktops
