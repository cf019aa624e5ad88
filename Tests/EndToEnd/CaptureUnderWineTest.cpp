// The capture of Windows against what the X server below Wine shows: this test starts the one for Windows in a role.
#include "Tests/EndToEnd/Installation.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/Desktop/Monitors.h"
#include "Tests/Support/Desktop/Screen.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/VirtualDisplay.h"

#include <chrono>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::Tests
{
namespace
{

constexpr int s_width = 800;
constexpr int s_height = 600;

/// A screen whose primary monitor lies right of and below the other one. Wine begins to count at the primary one, so
/// that the other has negative coordinates.
class CaptureUnderWine : public testing::Test
{
protected:
    void SetUp() override
    {
        constexpr int lastWithBoth = 8;
        if (const int version = Installation::GetWineVersion(); version > lastWithBoth)
            GTEST_SKIP() << "Wine " << version << " knows the primary one of the server's monitors alone.";
        m_screen.ShowOnRoot(m_picture);
        SetMonitors(m_display.GetName(), {m_other, m_primary}, 1);
        // Monitors of RandR 1.5 reach Wine through Xinerama alone.
        const ChildResult option =
            Run({"reg", "add", "HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver", "/v", "UseXRandR", "/d", "N", "/f"});
        ASSERT_EQ(option.exitCode, 0) << option.standardError;
        (void)Run({"--end"}); // it is read at the start
    }
    void TearDown() override { (void)Run({"--end"}); }

    /// Runs something under Wine, in a prefix of this test's own.
    ChildResult Run(const std::vector<std::string>& arguments, const std::vector<std::string>& environment = {}) const
    {
        ChildOptions options;
        options.program = "Scripts/wine.sh";
        options.arguments = arguments;
        options.environment = environment;
        options.environment.emplace_back("PATH=/usr/bin:/bin");
        options.environment.push_back("HOME=" + m_directory.GetPath().string());
        options.environment.push_back("DISPLAY=" + m_display.GetName());
        options.environment.push_back("WINEPREFIX=" + std::filesystem::absolute(s_prefix).string());
        options.workingDirectory = std::filesystem::current_path();
        return ChildProcess(options).Wait(std::chrono::seconds(90));
    }

    static constexpr const char* s_program = "build/windows-release/Tests/DesktopsWindowsTests.exe";
    static constexpr const char* s_prefix = "build/wine-prefix-monitors";

    const Area m_other{0, 0, 300, 500};
    const Area m_primary{300, 120, 500, 480};
    const Picture m_picture = MakeTestPicture(s_width, s_height, 4);
    const VirtualDisplay m_display{s_width, s_height};
    Screen m_screen{m_display.GetName()};
    const TemporaryDirectory m_directory;
};

/// A picture whose rows lie in a file with blue, green, red and a byte without meaning.
Picture ReadPixels(const std::filesystem::path& file, int width, int height)
{
    const Bytes bytes = ReadBytes(file);
    Picture picture{width, height, {}};
    for (std::size_t index = 0; index + 3 < bytes.size(); index += 4)
        picture.pixels.push_back(0xFF000000U | std::uint32_t{bytes[index + 2]} << 16U |
                                 std::uint32_t{bytes[index + 1]} << 8U | bytes[index]);
    return picture;
}

} // namespace

TEST_F(CaptureUnderWine, TakesWhatLiesLeftOfAndAboveTheOrigin)
{
    const std::filesystem::path file = m_directory.GetPath() / "pixels";
    // It begins on the other monitor and ends on the primary one.
    const Area area{20, 30, 400, 350};
    const std::string region = std::to_string(area.x - m_primary.x) + " " + std::to_string(area.y - m_primary.y) + " " +
                               std::to_string(area.x + area.width - m_primary.x) + " " +
                               std::to_string(area.y + area.height - m_primary.y);
    const ChildResult result = Run({s_program}, {"ORVIK_TEST_REGION=" + region, "ORVIK_TEST_FILE=" + file.string()});
    ASSERT_EQ(result.exitCode, 0) << region << result.standardOutput << result.standardError;
    EXPECT_THAT(result.standardOutput, testing::HasSubstr("desktop -300 -120 800 600"));
    EXPECT_EQ(m_screen.CaptureAll(), m_picture);
    EXPECT_TRUE(ReadPixels(file, area.width, area.height) == m_screen.Capture(area));
}

} // namespace Orvik::Tests
