#pragma once

#include "Core/System/Types/Buffer.h"
#include "Core/System/Types/Rectangle.h"
#include "Desktops/Failure.h"

namespace Orvik::Desktops
{

/// A desktop's part of a `CaptureContext`: what it needs to read a region of the screen. One thread.
class PlatformCaptureContext
{
public:
    PlatformCaptureContext() = default;
    PlatformCaptureContext(const PlatformCaptureContext&) = delete;
    PlatformCaptureContext& operator=(const PlatformCaptureContext&) = delete;
    virtual ~PlatformCaptureContext() = default; ///< gives everything back

    /// Acquires what the copies of `region` need, screen pixels, both sides 1 to 65,535. Once. False if the screen
    /// can't be read; nothing is logged.
    [[nodiscard]] virtual bool Initialize(const System::Math::Rectangle& region) = 0;

    /// Waits until a window that was just hidden is gone from the screen, and what lies below is drawn.
    virtual void AwaitRepaint() = 0;

    /// Copies the screen into the own pixels. Parts of the region beyond the screen become black.
    [[nodiscard]] virtual Failure CopyScreen() = 0;

    /// The pixels of the last copy, 4 bytes for each: rows from the top, tightly packed, blue, green, red and a byte
    /// without meaning.
    [[nodiscard]] virtual System::Types::Buffer<const unsigned char> GetPixels() const = 0;
};

} // namespace Orvik::Desktops
