#pragma once

#include "Desktops/Failure.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace Orvik::Desktops::Wayland
{

/// A pipe that another program writes pixels into.
class PixelPipe
{
public:
    PixelPipe();
    ~PixelPipe();
    PixelPipe(const PixelPipe&) = delete;
    PixelPipe& operator=(const PixelPipe&) = delete;

    /// Whether there is a pipe: the system may have none left to give.
    [[nodiscard]] bool IsOpen() const { return m_ends[0] != -1; }
    /// The end for the writer, a descriptor that stays this object's; -1 once it is given away.
    [[nodiscard]] int GetWriteEnd() const { return m_ends[1]; }
    /// Closes the own hold on the writer's end: from then on the pipe ends with its writer.
    void GiveWriteEndAway();

    /// Reads that many bytes, within that many nanoseconds, while `interrupt` isn't true. Else why not.
    [[nodiscard]] Failure Read(unsigned char* target, std::size_t bytes, std::int64_t nanoseconds,
                               const std::function<bool()>& interrupt);

private:
    std::array<int, 2> m_ends = {-1, -1};
};

} // namespace Orvik::Desktops::Wayland
