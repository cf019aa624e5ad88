// This program as what CaptureUnderWine starts: it captures what it is asked for and tests nothing.
#include "Core/System/Desktop/CaptureContext.h"
#include "Systems/Windows/WindowsHeaders.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <sstream>
#include <vector>

namespace Orvik::System::Device::Display
{
namespace
{

/// Prints the place and the size of the virtual desktop, and writes the pixels of a region to a file: rows from the
/// top, 4 bytes to the pixel.
bool WriteCapture(const char* region, const char* file)
{
    std::cout << "desktop " << GetSystemMetrics(SM_XVIRTUALSCREEN) << " " << GetSystemMetrics(SM_YVIRTUALSCREEN) << " "
              << GetSystemMetrics(SM_CXVIRTUALSCREEN) << " " << GetSystemMetrics(SM_CYVIRTUALSCREEN) << std::endl;
    Math::Rectangle area;
    std::istringstream(region) >> area.left >> area.top >> area.right >> area.bottom;
    CaptureContext context;
    std::vector<unsigned char> pixels;
    if (!context.Initialize(1, area) || !context.Capture(
                                            [&pixels](std::uint16_t, std::uint16_t, std::uint64_t bytes)
                                            {
                                                pixels.resize(bytes);
                                                return Types::Buffer<unsigned char>{pixels.data(), pixels.size()};
                                            }))
        return false;
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(pixels.data()), static_cast<std::streamsize>(pixels.size()));
    return stream.good();
}

class CaptureRole final : public testing::Environment
{
public:
    void SetUp() override
    {
        const char* const region = std::getenv("ORVIK_TEST_REGION");
        const char* const file = std::getenv("ORVIK_TEST_FILE");
        if (region != nullptr && file != nullptr)
            std::_Exit(WriteCapture(region, file) ? 0 : 1);
    }
};
testing::Environment* const s_role = testing::AddGlobalTestEnvironment(new CaptureRole);

} // namespace
} // namespace Orvik::System::Device::Display
