#include "Tests/Support/Desktop/BlankPointer.h"

#include <array>
#include <cstdint>
#include <fstream>

namespace Orvik::Tests
{

void WriteBlankPointer(const std::filesystem::path& themes, const char* name)
{
    constexpr std::uint32_t mark = 0x72756358; // "Xcur"
    constexpr std::uint32_t headBytes = 16;
    constexpr std::uint32_t fileVersion = 0x10000;
    constexpr std::uint32_t imageType = 0xFFFD0002;
    constexpr std::uint32_t imageHeadBytes = 36;
    constexpr std::uint32_t imageVersion = 1;
    constexpr std::uint32_t size = 24;  // for which the image is meant
    constexpr std::uint32_t place = 28; // of the image in the file
    const std::array<std::uint32_t, 17> file = {mark,
                                                headBytes,
                                                fileVersion,
                                                1, // so many entries follow
                                                imageType,
                                                size,
                                                place, // the entry
                                                imageHeadBytes,
                                                imageType,
                                                size,
                                                imageVersion,
                                                1,
                                                1,
                                                0,
                                                0,
                                                0,  // width, height, the point's place, the time
                                                0}; // the pixel
    const std::filesystem::path folder = themes / name / "cursors";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "left_ptr", std::ios::binary)
        .write(reinterpret_cast<const char*>(file.data()), sizeof(file));
}

} // namespace Orvik::Tests
