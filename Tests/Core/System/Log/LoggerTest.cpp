#include "Core/System/Log/Log.h"

#include "Core/System/Error/Exception.h"
#include "Core/System/Log/FileLogSink.h"
#include "Core/System/Runtime/DirectoryCache.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Texts.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>

namespace Orvik::System::Log
{
namespace
{

using Tests::MatchesPattern;

constexpr Context s_systemSite{StreamID::System};
constexpr const char* s_time = "\\[20[0-9][0-9]-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\\.[0-9]{7}Z";

/// A regular expression for one line: the time, then `rest` as it is.
std::string Line(const std::string& rest)
{
    std::string pattern = s_time;
    for (const char character : rest)
    {
        if (std::string_view(".|[]()*+?{}^$\\").find(character) != std::string_view::npos)
            pattern += '\\';
        pattern += character;
    }
    return pattern;
}

class LoggerTest : public testing::Test
{
protected:
    LoggerTest()
    {
        m_config.m_logDirectory = m_directory.GetPath() / "Logs";
        m_config.m_logFileName = "Name";
        m_config.m_streamSeverities = {0, 0, 0x3FFFFFF, 0, 0, 0, 0};
    }

    void Initialize()
    {
        testing::internal::CaptureStdout();
        EXPECT_TRUE(m_logger.Initialize(&m_config));
    }

    /// What went to the console since `Initialize`. Ends the capture.
    [[nodiscard]] static std::string TakeOutput() { return testing::internal::GetCapturedStdout(); }

    [[nodiscard]] std::filesystem::path GetFile() const
    {
        return dynamic_cast<const FileLogSink&>(*m_logger.GetSinks().at(1)).GetCurrentPath();
    }

    [[nodiscard]] std::string ReadFile() const
    {
        std::ifstream file(GetFile()); // as text: line ends differ
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Makes it impossible to open a new log file in the next seconds.
    void BlockFiles() const
    {
        std::filesystem::create_directories(m_config.m_logDirectory);
        const std::time_t now = std::time(nullptr);
        for (std::time_t second = now; second < now + 20; ++second)
        {
            std::array<char, 64> name = {};
            std::strftime(name.data(), name.size(), "Name_%Y-%m-%dT%H-%M-%S.log", std::localtime(&second));
            std::filesystem::create_directory(m_config.m_logDirectory / name.data());
        }
    }

    Tests::TemporaryDirectory m_directory;
    LoggerConfig m_config;
    Logger m_logger;
};

TEST_F(LoggerTest, HasItsIdentity)
{
    EXPECT_EQ(m_logger.GetName(), "LogSystem");
    GUID guid;
    EXPECT_EQ(m_logger.GetGuid(guid).ToString(), "{4392DED5-2813-410E-A3BB-393A4153F1F9}");
    std::uint32_t typeId = 0;
    EXPECT_EQ(m_logger.GetTypeId(typeId), 0x5FC2C68DU);
    EXPECT_FALSE(m_logger.ToleratesInitializationFailure());
}

TEST_F(LoggerTest, ReceivesFromItsConstructionToItsDestruction)
{
    EXPECT_EQ(GetReceiver(), &m_logger);
    {
        const Logger another;
        EXPECT_EQ(GetReceiver(), &another);
    }
    EXPECT_EQ(GetReceiver(), nullptr);
    Write(s_systemSite, MessageTypeID::Error, "nobody hears this");
}

TEST_F(LoggerTest, LeavesAnotherReceiverInPlace)
{
    Tests::LogRecorder recorder;
    auto logger = std::make_unique<Logger>();
    SetReceiver(&recorder);
    logger.reset();
    EXPECT_EQ(GetReceiver(), &recorder);
}

TEST_F(LoggerTest, DropsMessagesBeforeItIsInitialized)
{
    testing::internal::CaptureStdout();
    Write(s_systemSite, MessageTypeID::Error, "too early");
    EXPECT_EQ(TakeOutput(), "");
}

TEST_F(LoggerTest, NullForAConfigurationIsAnAssertionFailure)
{
    EXPECT_ASSERTION((void)m_logger.Initialize(nullptr), "config != nullptr",
                     "Function parameter 'config' must be non-null.");
}

TEST_F(LoggerTest, HasTheConsoleAndTheFile)
{
    Initialize();
    EXPECT_EQ(TakeOutput(), "");
    ASSERT_EQ(m_logger.GetSinks().size(), 2U);
    EXPECT_EQ(m_logger.GetSinks()[1]->GetId(), m_logger.GetSinks()[0]->GetId() + 1);
    EXPECT_EQ(GetFile().parent_path(), m_config.m_logDirectory);
    EXPECT_THAT(GetFile().filename().string(), testing::StartsWith("Name_20"));
}

TEST_F(LoggerTest, WritesLinesWithTimeStreamAndSeverity)
{
    Initialize();
    Write(s_systemSite, MessageTypeID::Warning, "number ", 7, '.');
    Write(Context{StreamID::SnipBench}, MessageTypeID::Error, "");
    const std::string output = TakeOutput();
    EXPECT_THAT(output, MatchesPattern(Line(" | System] Warning: number 7.\n") + Line(" | SnipBench] Error: \n")));
    EXPECT_EQ(ReadFile(), output);
}

TEST_F(LoggerTest, EverySeverityHasItsWordButAlways)
{
    Initialize();
    const Context site{StreamID::Graphics, 0};
    for (const MessageTypeID severity :
         {MessageTypeID::Debug, MessageTypeID::Verbose, MessageTypeID::Info, MessageTypeID::Warning,
          MessageTypeID::Error, MessageTypeID::Critical, MessageTypeID::Always})
        Write(site, severity, "text");
    EXPECT_THAT(TakeOutput(), MatchesPattern(Line(" | Graphics] Debug: text\n") + Line(" | Graphics] Verbose: text\n") +
                                             Line(" | Graphics] Info: text\n") + Line(" | Graphics] Warning: text\n") +
                                             Line(" | Graphics] Error: text\n") +
                                             Line(" | Graphics] Critical: text\n") + Line(" | Graphics] text\n")));
}

TEST_F(LoggerTest, PathsAreWrittenBetweenDoubleQuotes)
{
    Initialize();
    Write(s_systemSite, MessageTypeID::Always, "from '", std::filesystem::path("/a b/\"c\\"), "'.");
    EXPECT_THAT(TakeOutput(), MatchesPattern(Line(" | System] from '\"/a b/\\\"c\\\\\"'.\n")));
}

TEST_F(LoggerTest, TheSeverityGateIsTheSites)
{
    Initialize();
    Write(s_systemSite, MessageTypeID::Debug, "off");
    Write(s_systemSite, MessageTypeID::Verbose, "off");
    Write(s_systemSite, MessageTypeID::Info, "on");
    Write(Context{StreamID::System, 0x105}, MessageTypeID::Error, "off: only the low byte counts");
    Write(Context{StreamID::System, 0x105}, MessageTypeID::Critical, "on");
    Write(Context{StreamID::System, 0xFF}, MessageTypeID::Always, "on");
    EXPECT_THAT(TakeOutput(), MatchesPattern(Line(" | System] Info: on\n") + Line(" | System] Critical: on\n") +
                                             Line(" | System] on\n")));
}

TEST_F(LoggerTest, TheStreamGateIsTheConfigurations)
{
    m_config.m_enabledStreams = StreamID::Graphics;
    Initialize();
    Write(s_systemSite, MessageTypeID::Always, "off");
    Write(Context{StreamID::Graphics}, MessageTypeID::Info, "on");
    EXPECT_THAT(TakeOutput(), MatchesPattern(Line(" | Graphics] Info: on\n")));
}

TEST_F(LoggerTest, ADirectWriteHasNoSeverityGate)
{
    m_config.m_enabledStreams = StreamID::Default;
    Initialize();
    m_logger.Write<StreamID::Default, MessageTypeID::Debug>("piece ", 1, " and ", 2.5);
    m_logger.Write<StreamID::System, MessageTypeID::Critical>("off");
    EXPECT_THAT(TakeOutput(), MatchesPattern(Line(" | Default] Debug: piece 1 and 2.5\n")));
}

TEST_F(LoggerTest, AStreamThatIsNoneIsAnAssertionFailure)
{
    Initialize();
    EXPECT_ASSERTION(Write(Context{0x3}, MessageTypeID::Error, "two streams"), "false",
                     "Implementation of case directive is missing.");
    EXPECT_EQ(TakeOutput(), "");
}

TEST_F(LoggerTest, ShutsDownAfterALineThatCouldNotBeMade)
{
    Initialize();
    EXPECT_ASSERTION(Write(Context{0x3}, MessageTypeID::Error, "two streams"), "false",
                     "Implementation of case directive is missing.");
    m_logger.OnShutdown(); // waits for no one
    EXPECT_EQ(TakeOutput(), "");
}

TEST_F(LoggerTest, ReleasesItsSinksAtShutdown)
{
    Initialize();
    const std::weak_ptr<Sink> file = m_logger.GetSinks()[1];
    m_logger.OnShutdown();
    EXPECT_TRUE(m_logger.GetSinks().empty());
    EXPECT_TRUE(file.expired());
    Write(s_systemSite, MessageTypeID::Error, "too late");
    EXPECT_EQ(TakeOutput(), "");
}

TEST_F(LoggerTest, SmallLimitsAreRaised)
{
    std::filesystem::create_directories(m_config.m_logDirectory);
    const std::filesystem::path file = m_config.m_logDirectory / "Name_2026-01-01T00-00-00.log";
    std::ofstream(file) << "a few bytes\n";
    std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() - std::chrono::hours(9 * 24));
    m_config.m_maxFileSize = 1;
    for (const std::uint32_t age : {0U, 9U, 0x80000000U, 0xFFFFFFFFU})
    {
        m_config.m_maxFileAge = age;
        Initialize();
        EXPECT_EQ(GetFile(), file) << age;
        (void)TakeOutput();
    }
}

TEST_F(LoggerTest, TheSizeIsRaisedToTenMebibytes)
{
    std::filesystem::create_directories(m_config.m_logDirectory);
    const std::filesystem::path file = m_config.m_logDirectory / "Name_2026-01-01T00-00-00.log";
    std::ofstream(file).flush();
    std::filesystem::resize_file(file, 10485759);
    m_config.m_maxFileSize = 1;
    Initialize();
    EXPECT_EQ(GetFile(), file);
    Write(s_systemSite, MessageTypeID::Error, "one byte is left");
    EXPECT_NE(GetFile(), file);
    (void)TakeOutput();
}

TEST_F(LoggerTest, ALogFileThatCannotBeOpenedIsThrownAndLeavesTheConsole)
{
    BlockFiles();
    testing::internal::CaptureStdout();
    try
    {
        (void)m_logger.Initialize(&m_config);
        ADD_FAILURE();
    }
    catch (const Error::Exception& exception)
    {
        Error::ErrorCode code;
        EXPECT_EQ(exception.GetErrorCode(code).value, 0x0000000200020002U);
        EXPECT_STREQ(exception.GetTypeName(), "Orvik::Exception");
        EXPECT_STREQ(exception.GetLocation().function, "Initialize");
        EXPECT_STREQ(exception.GetLocation().file, "/Core/System/Log/Log.cpp");
        std::ostringstream message;
        exception.WriteMessage(message);
        EXPECT_EQ(message.str(), "Failed to initialize log file.");
    }
    ASSERT_EQ(m_logger.GetSinks().size(), 2U);
    EXPECT_NE(m_logger.GetSinks()[0], nullptr);
    EXPECT_EQ(m_logger.GetSinks()[1], nullptr);
    Write(s_systemSite, MessageTypeID::Error, "to the console alone");
    EXPECT_THAT(TakeOutput(), MatchesPattern(Line(" | System] Error: to the console alone\n")));
}

TEST_F(LoggerTest, AFailingSinkIsReportedOnceAndLeftOut)
{
    Initialize();
    const std::filesystem::path file = GetFile();
    Write(s_systemSite, MessageTypeID::Error, "one");
    std::error_code error;
    if (!std::filesystem::remove(file, error))
    {
        (void)TakeOutput();
        GTEST_SKIP() << "An open file can't be removed here.";
    }
    std::filesystem::create_directory(file);
    testing::internal::CaptureStderr();
    Write(s_systemSite, MessageTypeID::Error, "two");
    Write(s_systemSite, MessageTypeID::Error, "three");
    std::filesystem::remove(file);
    std::ofstream(file).flush();
    Write(s_systemSite, MessageTypeID::Error, "four");
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                MatchesPattern("A log sink failed and gets no further lines: filesystem error: file_size[^\n]*\n"));
    EXPECT_THAT(TakeOutput(), MatchesPattern(Line(" | System] Error: one\n") + Line(" | System] Error: two\n") +
                                             Line(" | System] Error: three\n") + Line(" | System] Error: four\n")));
    EXPECT_EQ(ReadFile(), "");
}

TEST_F(LoggerTest, ASplitThatFailsIsReportedAndTheRunGoesOn)
{
    std::filesystem::create_directories(m_config.m_logDirectory);
    const std::filesystem::path file = m_config.m_logDirectory / "Name_2026-01-01T00-00-00.log";
    std::ofstream(file).flush();
    std::filesystem::resize_file(file, 10485759);
    m_config.m_maxFileSize = 0;
    Initialize();
    BlockFiles();
    testing::internal::CaptureStderr();
    Write(s_systemSite, MessageTypeID::Error, "one");
    Write(s_systemSite, MessageTypeID::Error, "two");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "A log sink failed and gets no further lines: Couldn't open new log file.\n");
    EXPECT_THAT(TakeOutput(), MatchesPattern(Line(" | System] Error: one\n") + Line(" | System] Error: two\n")));
}

// Contexts. Registered ones have to outlive the process.

Context s_registered{StreamID::Graphics};
Context s_late{StreamID::Network};

TEST_F(LoggerTest, RegisteredContextsFollowTheConfiguration)
{
    RegisterContext(&s_registered);
    EXPECT_EQ(s_registered.severity, 2U);
    m_config.m_streamSeverities = {0, 0x4, 0x3FFFFFB, 0, 0, 0, 0};
    Initialize();
    (void)TakeOutput();
    EXPECT_EQ(s_registered.severity, 1U);
}

TEST_F(LoggerTest, AContextGetsTheLeastSeverityOfItsStream)
{
    m_config.m_streamSeverities = {0, 0, 0x1, 0x3, 0x7, 0, 0x2000000};
    Initialize();
    (void)TakeOutput();
    const auto apply = [this](std::uint32_t stream)
    {
        Context context{stream, 77};
        m_logger.ApplySeverity(context);
        return context.severity;
    };
    EXPECT_EQ(apply(0x1), 2U);
    EXPECT_EQ(apply(0x2), 3U);
    EXPECT_EQ(apply(0x4), 4U);
    EXPECT_EQ(apply(0x2000000), 6U);
    EXPECT_EQ(apply(0x8), 77U) << "a stream that no entry holds";
}

TEST_F(LoggerTest, UpdatingAContextNeedsALogger)
{
    Context context{StreamID::Graphics, 77};
    IMessageReceiver* const logger = SetReceiver(nullptr);
    UpdateContext(&context);
    EXPECT_EQ(context.severity, 77U);

    SetReceiver(logger);
    UpdateContext(&context);
    EXPECT_EQ(context.severity, 77U) << "an empty table";

    m_config.m_streamSeverities = {0x4, 0, 0x3FFFFFB, 0, 0, 0x8, 0};
    Initialize();
    (void)TakeOutput();
    UpdateContext(&context);
    EXPECT_EQ(context.severity, 0U);
    RegisterContext(&s_late);
    EXPECT_EQ(s_late.severity, 2U) << "the first entry with the stream";
}

} // namespace
} // namespace Orvik::System::Log
