#pragma once

// Wayland's own.

#include "Core/System/Types/Rectangle.h"

#include <cstdint>
#include <string>

struct wl_output;
struct zxdg_output_manager_v1;
struct zxdg_output_v1;

namespace Orvik::Desktops::Wayland
{

/// What the compositor says of a display. Its numbers are the compositor's, and may be anything.
struct OutputDescription
{
    std::string name;           ///< of its connector, such as "DP-1"; empty where the compositor says none
    std::string model;          ///< a person's name for it
    std::int32_t modeWidth = 0; ///< physical pixels, as the device scans them
    std::int32_t modeHeight = 0;
    std::int32_t refreshRate = 0; ///< millihertz
    std::int32_t transform = 0;   ///< a value of `wl_output_transform`
    std::int32_t scale = 1;       ///< whole; the next greater one of a fraction
    std::int32_t x = 0;           ///< the place in the compositor's space
    std::int32_t y = 0;
    std::int32_t logicalWidth = 0; ///< the size in that space, 0 where the compositor doesn't say
    std::int32_t logicalHeight = 0;

    /// Whether the picture stands on its side.
    [[nodiscard]] bool IsTurned() const { return (transform & 1) != 0; }
    /// The size of the picture as the user sees it, physical pixels.
    [[nodiscard]] std::int32_t GetWidth() const { return IsTurned() ? modeHeight : modeWidth; }
    [[nodiscard]] std::int32_t GetHeight() const { return IsTurned() ? modeWidth : modeHeight; }

    /// Physical pixels to a pixel of the compositor's space; a multiple of 1/120, as compositors have them.
    [[nodiscard]] double GetScale() const;

    /// Whether a display may have such a place and size: they fit into 16 bits. Else it is as if there were none.
    [[nodiscard]] bool IsPossible() const;
    /// The place in the compositor's space, with the size in physical pixels. Empty if that isn't possible.
    [[nodiscard]] System::Math::Rectangle GetArea() const;
};

/// A display of the compositor, kept up to date. The main thread.
class Output
{
public:
    Output(wl_output* output, std::uint32_t globalName);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// Asks for the place and the size in the compositor's space; null if nothing can be asked.
    void AskForPlace(zxdg_output_manager_v1* manager);

    [[nodiscard]] wl_output* GetProxy() const { return m_output; }
    [[nodiscard]] std::uint32_t GetGlobalName() const { return m_globalName; }
    [[nodiscard]] const OutputDescription& GetDescription() const { return m_description; }

private:
    wl_output* m_output;
    zxdg_output_v1* m_place = nullptr;
    std::uint32_t m_globalName;
    OutputDescription m_description;
};

} // namespace Orvik::Desktops::Wayland
