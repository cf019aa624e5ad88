#include "Core/System/Time/Timestamp.h"
#include "Tests/Support/EnvironmentVariable.h"

#include <chrono>
#include <ctime>
#include <gtest/gtest.h>
#include <limits>

namespace Orvik::System::Time
{
namespace
{

/// Another time zone while it lives.
class TimeZone
{
public:
    explicit TimeZone(const char* name) : m_variable("TZ", name) { tzset(); }

private:
    Tests::EnvironmentVariable m_variable;
};

TEST(Timestamp, HasSevenDigitsOfTheSecondInUtc)
{
    EXPECT_EQ(FormatTimestamp(0), "1970-01-01T00:00:00.0000000Z");
    EXPECT_EQ(FormatTimestamp(1), "1970-01-01T00:00:00.0000001Z");
    EXPECT_EQ(FormatTimestamp(17'944'659'941'234'567), "2026-11-12T06:46:34.1234567Z");
    EXPECT_EQ(FormatTimestamp(9'999'999), "1970-01-01T00:00:00.9999999Z");
    EXPECT_EQ(FormatTimestamp(10'000'000), "1970-01-01T00:00:01.0000000Z");
}

TEST(Timestamp, ZoneOfTheMachineDoesNotMatter)
{
    const TimeZone zone("America/New_York");
    EXPECT_EQ(FormatTimestamp(17'944'659'941'234'567), "2026-11-12T06:46:34.1234567Z");
}

TEST(Timestamp, LeapDaysAndYearEnds)
{
    EXPECT_EQ(FormatTimestamp(9'517'823'990'000'000), "2000-02-28T23:59:59.0000000Z");
    EXPECT_EQ(FormatTimestamp(9'517'824'000'000'000), "2000-02-29T00:00:00.0000000Z");
    EXPECT_EQ(FormatTimestamp(2'534'023'007'999'999'999), "9999-12-31T23:59:59.9999999Z");
}

TEST(Timestamp, TimesBefore1970CountForward)
{
    EXPECT_EQ(FormatTimestamp(-1), "1969-12-31T23:59:59.9999999Z");
    EXPECT_EQ(FormatTimestamp(-10'000'000), "1969-12-31T23:59:59.0000000Z");
    EXPECT_EQ(FormatTimestamp(-864'000'000'000), "1969-12-31T00:00:00.0000000Z");
    EXPECT_EQ(FormatTimestamp(-116'444'736'000'000'000), "1601-01-01T00:00:00.0000000Z");
    EXPECT_EQ(FormatTimestamp(-621'355'968'000'000'000), "0001-01-01T00:00:00.0000000Z");
}

TEST(Timestamp, AnyTickHasAText)
{
    EXPECT_EQ(FormatTimestamp(std::numeric_limits<std::int64_t>::max()), "31197-09-14T02:48:05.4775807Z");
    EXPECT_EQ(FormatTimestamp(std::numeric_limits<std::int64_t>::min()), "-27258-04-19T21:11:54.5224192Z");
}

TEST(Timestamp, SystemTicksAreHundredsOfNanoseconds)
{
    using namespace std::chrono;
    const auto before = duration_cast<microseconds>(system_clock::now().time_since_epoch()).count() * 10;
    const std::int64_t ticks = GetSystemTicks();
    const auto after = duration_cast<microseconds>(system_clock::now().time_since_epoch()).count() * 10;
    EXPECT_GE(ticks, before);
    EXPECT_LE(ticks, after + 10);
}

TEST(Timestamp, FileTimeIsLocal)
{
    {
        const TimeZone zone("UTC");
        EXPECT_EQ(FormatLocalFileTime(1'794'465'994), "2026-11-12T06-46-34");
    }
    const TimeZone zone("IST-5:30");
    EXPECT_EQ(FormatLocalFileTime(1'794'465'994), "2026-11-12T12-16-34");
    EXPECT_EQ(FormatLocalFileTime(0), "1970-01-01T05-30-00");
}

} // namespace
} // namespace Orvik::System::Time
