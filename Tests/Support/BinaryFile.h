#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace Orvik::Tests
{

using Bytes = std::vector<std::uint8_t>;

/// Throws if the file can't be written.
void WriteBytes(const std::filesystem::path& path, const Bytes& bytes);

/// The whole file. Throws if it can't be opened.
[[nodiscard]] Bytes ReadBytes(const std::filesystem::path& path);

/// `first` with `second` behind it.
[[nodiscard]] Bytes operator+(Bytes first, const Bytes& second);

} // namespace Orvik::Tests
