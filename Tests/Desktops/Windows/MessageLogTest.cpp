#include "Core/System/Log/Log.h"
#include "Tests/Desktops/Windows/WindowFixture.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <string>

namespace Orvik::System::Desktop
{
namespace
{

class MessageLog : public Tests::WindowFixture
{
protected:
    MessageLog() { EXPECT_TRUE(m_window.Create()); }

    /// What goes to the console while the window gets messages, with all streams at that severity.
    std::string LogMessages(Log::MessageTypeID severity)
    {
        Log::LoggerConfig config;
        config.m_logDirectory = m_directory.GetPath();
        config.m_logFileName = "Messages";
        config.m_streamSeverities.assign(7, 0);
        config.m_streamSeverities[static_cast<std::size_t>(severity)] = 0x3FFFFFF;
        testing::internal::CaptureStdout();
        Log::Logger logger;
        EXPECT_TRUE(logger.Initialize(&config));
        Send(WM_HOTKEY, 5, -6);
        Send(WM_KEYDOWN, s_undefinedKey, 0);
        return testing::internal::GetCapturedStdout();
    }

    static constexpr WPARAM s_undefinedKey = 0x07;

    Tests::TemporaryDirectory m_directory;
};

TEST_F(MessageLog, EveryMessageIsALineOnceTheStreamIsConfiguredForIt)
{
    const std::string handle = std::to_string(reinterpret_cast<std::uintptr_t>(GetHwnd(m_window)));
    EXPECT_THAT(LogMessages(Log::MessageTypeID::Debug),
                testing::HasSubstr(" | System] Debug: Window (" + handle + "): WM_HOTKEY (786) 5 -6\n"));
    EXPECT_THAT(LogMessages(Log::MessageTypeID::Info), testing::Not(testing::HasSubstr("WM_HOTKEY")));
}

TEST_F(MessageLog, AWarningIsOneWhateverIsConfigured)
{
    EXPECT_THAT(LogMessages(Log::MessageTypeID::Error),
                testing::HasSubstr(" | System] Warning: Found undefined virtual key: 7\n"));
}

} // namespace
} // namespace Orvik::System::Desktop
