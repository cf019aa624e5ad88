#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

namespace Orvik::Tests
{

using Bytes = std::vector<std::uint8_t>;

/// Throws if the file can't be written.
void WriteBytes(const std::filesystem::path& path, const Bytes& bytes);

/// The whole file. Throws if it can't be opened.
[[nodiscard]] Bytes ReadBytes(const std::filesystem::path& path);

/// The same as text, bytes as they are. Empty if it can't be opened.
[[nodiscard]] std::string ReadText(const std::filesystem::path& path);

/// The parts one after the other.
[[nodiscard]] Bytes Concatenate(std::initializer_list<Bytes> parts);

} // namespace Orvik::Tests
