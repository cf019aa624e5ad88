#pragma once

#include <filesystem>

namespace Orvik::Tests
{

/// Writes a theme of pointers of that name below a folder of themes, in which the ordinary pointer is a transparent
/// pixel. A compositor without a screen draws it into what it shows, and so into each picture of that.
void WriteBlankPointer(const std::filesystem::path& themes, const char* name);

} // namespace Orvik::Tests
