#include "Data/Run/Progress.h"

#include "Tests/Support/CapturedStream.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace Orvik::Data
{
namespace
{

using testing::HasSubstr;
using Tests::CapturedStream;

/// What half of ten steps write, taken long enough for a bar.
std::string TakeSteps(bool isTerminal)
{
    const CapturedStream stream;
    {
        Progress progress("work", 10, *stream.Get(), isTerminal);
        std::this_thread::sleep_for(std::chrono::milliseconds(600));
        for (int i = 0; i < 5; ++i)
            progress.Step();
    }
    return stream.Read();
}

TEST(Progress, ABarIsShownAndTakenOff)
{
    const std::string text = TakeSteps(true);
    EXPECT_THAT(text, HasSubstr("\rwork [###"));
    EXPECT_THAT(text, HasSubstr("1/10"));
    EXPECT_EQ(text.back(), '\r');
}

TEST(Progress, NothingIsWrittenElsewhere)
{
    EXPECT_EQ(TakeSteps(false), "");
}

TEST(Progress, ShortWorkShowsNone)
{
    const CapturedStream stream;
    {
        Progress progress("work", 10, *stream.Get(), true);
        progress.Step();
    }
    EXPECT_EQ(stream.Read(), "");
}

} // namespace
} // namespace Orvik::Data
