#pragma once

// Private to the units of this folder.

#include "Tests/Support/Desktop/Picture.h"

#include <memory>
#include <string>

namespace Orvik::Tests
{

/// Where the picture of a screen comes from.
class ScreenReader
{
public:
    ScreenReader() = default;
    ScreenReader(const ScreenReader&) = delete;
    ScreenReader& operator=(const ScreenReader&) = delete;
    virtual ~ScreenReader() = default;

    [[nodiscard]] virtual int GetWidth() const = 0;
    [[nodiscard]] virtual int GetHeight() const = 0;
    /// The area must be on the screen.
    [[nodiscard]] virtual Picture Capture(const Area& area) = 0;
};

/// The first output of a compositor that lets its screen be copied; one that isn't turned. Throws `std::runtime_error`
/// if it doesn't.
[[nodiscard]] std::unique_ptr<ScreenReader> MakeCompositorReader(const std::string& socket);

} // namespace Orvik::Tests
