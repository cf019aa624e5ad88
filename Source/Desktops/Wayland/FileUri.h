#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace Orvik::Desktops::Wayland
{

/// The file that a "file:" URI names. Nothing if it is another URI, a file of another machine, a relative path, or
/// wrongly written.
[[nodiscard]] std::optional<std::filesystem::path> FindFileOfUri(std::string_view uri);

} // namespace Orvik::Desktops::Wayland
