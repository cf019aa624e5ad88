#pragma once

#include "Core/System/Types/Buffer.h"
#include "Core/System/Types/Rectangle.h"
#include "Desktops/DisplayDescriptor.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace Orvik::System::Desktop
{
class Window;
} // namespace Orvik::System::Desktop

namespace Orvik::Desktops
{
class PlatformCaptureContext;
} // namespace Orvik::Desktops

namespace Orvik::System::Device::Display
{

/// What the fourth byte of a picture's pixels holds.
enum class FourthByte : std::uint8_t
{
    AsCopied, ///< no meaning
    Opaque    ///< 255: the screen has no transparency
};

/// Takes a picture of a rectangle of the screen. `Initialize` gets all resources, so that `Capture` is only one copy
/// from the screen and one in memory. One thread.
class CaptureContext
{
public:
    /// Gets width and height in pixels and the number of bytes; returns memory of at least that many bytes, which stays
    /// valid until `Capture` returns. Width and height are cut to 16 bits.
    using Callback =
        std::function<Types::Buffer<unsigned char>(std::uint16_t width, std::uint16_t height, std::uint64_t bytes)>;

    CaptureContext();
    ~CaptureContext();
    CaptureContext(const CaptureContext&) = delete;
    CaptureContext& operator=(const CaptureContext&) = delete;

    /// Gets the resources for `region`, in screen pixels. False if it has no pixels or a side beyond 65,535, or if the
    /// screen can't be read; nothing is logged then, and nothing of an earlier region is kept.
    [[nodiscard]] bool Initialize(std::uint16_t displayId, const Math::Rectangle& region);

    /// The window to leave out of the picture, or null. Not owned.
    void SetWindow(Desktop::Window* window) { m_window = window; }

    /// Copies the screen into the callback's memory: rows from the top, without padding, in the order blue, green, red
    /// and a fourth byte as chosen. A visible window is hidden during the copy. False with a log line if the copy
    /// fails; the callback isn't called then. A buffer that is too small is an assertion failure.
    bool Capture(const Callback& callback, FourthByte fourthByte = FourthByte::AsCopied);

private:
    [[nodiscard]] bool CopyScreen(const Callback& callback, FourthByte fourthByte);

    std::uint16_t m_displayId = InvalidDisplayId;
    Math::Rectangle m_region;
    std::unique_ptr<Desktops::PlatformCaptureContext> m_platformContext; ///< never null
    Desktop::Window* m_window = nullptr;
};

} // namespace Orvik::System::Device::Display
