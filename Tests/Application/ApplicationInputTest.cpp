#include "Core/System/Time/MonotonicClock.h"
#include "Tests/Application/ApplicationFixture.h"
#include "Tests/Support/OwnProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::SnipBench
{
namespace
{

using System::Desktop::Window;
using testing::EndsWith;
using testing::HasSubstr;

using ApplicationInput = ApplicationTest;

TEST_F(ApplicationInput, AMotionWhosePlaceIsNotKnownIsLeftOut)
{
    UseOutput();
    AddArguments({"-s", "true"});
    Move({10, 20});
    Button(1, true);
    Move({110, 70});
    desktop.messages.emplace_back(
        [this](Window& window)
        {
            desktop.cursorFails = true;
            EXPECT_TRUE(window.DeliverMouseMove(150, 90)) << "it counts as handled";
            desktop.cursorFails = false;
        });
    Button(1, false);
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(ReadLog(), HasSubstr("GetCurrentPosition"));
    const auto files = ListFiles(output.GetPath());
    ASSERT_EQ(files.size(), 2U);
    System::Multimedia::Bitmap snip;
    ASSERT_TRUE(snip.Load(files[files[0].extension() == ".png" ? 0 : 1].string()));
    EXPECT_EQ(snip.GetWidth(), 100) << "the crosshair stays where it is";
    EXPECT_EQ(snip.GetHeight(), 50);
}

TEST_F(ApplicationInput, IntoMemoryAtMostOneFrameIsDrawnInARefreshPeriod)
{
    constexpr std::int64_t period = 1'000'000'000 / 60;
    constexpr std::int32_t moves = 60;
    desktop.hasGraphicsCard = false;
    // Each move comes when all work for the one before is done: nothing waits after it.
    std::int32_t moved = 0;
    desktop.onWait = [&]
    {
        if (!desktop.messages.empty())
            return;
        if (moved == moves)
            Escape();
        else
            Move({10 + ++moved, 20});
    };
    UseOutput();
    const std::int64_t start = System::Time::GetMonotonicNanoseconds();
    EXPECT_EQ(Run(), 0);
    const std::int64_t elapsed = System::Time::GetMonotonicNanoseconds() - start;
    EXPECT_EQ(moved, moves);
    EXPECT_GE(desktop.frames, 1U);
    EXPECT_LE(desktop.frames, static_cast<std::uint64_t>(elapsed / period + 1));
}

TEST_F(ApplicationInput, WhatIsMovedLastIsDrawnWhenThePeriodEnds)
{
    desktop.hasGraphicsCard = false;
    std::uint64_t framesBefore = 0;
    std::int32_t waits = 0;
    desktop.onWait = [&]
    {
        ++waits;
        if (waits == 1)
        {
            framesBefore = desktop.frames;
            Move({30, 20});
        }
        // Far more than a period: a wait is a millisecond at most.
        else if (waits > 100 && desktop.frames > framesBefore && desktop.messages.empty())
            Escape();
        ASSERT_LT(waits, 100'000) << "the last move is never drawn";
    };
    UseOutput();
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(desktop.frames, framesBefore + 1);
}

TEST_F(ApplicationInput, ADisplayThatReportsOnePictureASecondIsDrawnOnAsUsual)
{
    desktop.hasGraphicsCard = false;
    desktop.displays.front().refreshRate = 1;
    std::uint64_t framesBefore = 0;
    std::int32_t waits = 0;
    desktop.onWait = [&]
    {
        // Far more than a usual period, and far less than a second: a wait is a millisecond at most.
        constexpr std::int32_t manyWaits = 200;
        if (++waits == 1)
        {
            framesBefore = desktop.frames;
            Move({30, 20});
        }
        else if (waits == manyWaits)
        {
            EXPECT_EQ(desktop.frames, framesBefore + 1);
            Escape();
        }
    };
    UseOutput();
    EXPECT_EQ(Run(), 0);
    EXPECT_GE(waits, 2);
}

TEST_F(ApplicationInput, PermissionIsThereAndTheRunGoesOn)
{
    UseOutput();
    AddArguments({"-p", "-s", "true"});
    Drag({10, 20}, {110, 70});
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(printed, EndsWith(MakeCodeObject("Success", 0)));
    EXPECT_EQ(ListFiles(output.GetPath()).size(), 2U);
}

// A person who aims holds the mouse still, and the loop waits.
TEST_F(ApplicationInput, ThePathIsShownForASecondHoweverLongTheLoopHasWaitedBefore)
{
    using Clock = std::chrono::steady_clock;
    constexpr std::size_t width = 800;
    constexpr std::size_t height = 600;
    desktop.displays.clear();
    AddDisplay(0, 0, width, height);
    desktop.hasGraphicsCard = false;
    UseOutput();
    Move({10, 20});
    Button(1, true);
    Move({110, 70});
    // Right of the pointer, in the lower part: nothing but the path is there.
    const auto readBand = [this]
    {
        std::vector<std::uint32_t> band;
        for (std::size_t y = height * 3 / 4; y < height && desktop.shownPixels.size() == width * height; ++y)
        {
            const auto row = desktop.shownPixels.begin() + static_cast<std::ptrdiff_t>(y * width);
            band.insert(band.end(), row + width / 4, row + width);
        }
        return band;
    };
    std::vector<std::uint32_t> empty;
    std::vector<bool> isShown;
    Clock::time_point release;
    desktop.onWait = [&]
    {
        if (empty.empty() && !readBand().empty())
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(1100));
            empty = readBand();
            release = Clock::now();
            Button(1, false);
        }
        if (empty.empty() || Clock::now() < release + std::chrono::milliseconds(isShown.empty() ? 200 : 1500))
            return;
        isShown.push_back(readBand() != empty);
        if (isShown.size() == 2)
            Escape();
    };
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(isShown, testing::ElementsAre(true, false));
}

TEST_F(ApplicationInput, WithoutAnOutputDirectoryFilesGoBelowTheRoot)
{
    const std::filesystem::path folder = Tests::GetOwnProgram().parent_path() / ".temp";
    for (const auto& [annotate, name] : {std::pair{"false", "Screenshots"}, std::pair{"true", "Annotations"}})
    {
        std::filesystem::remove_all(folder);
        commandLine = {};
        commandLine.arguments = {"SnipBench", "-s", "true", "-a", annotate};
        Drag({10, 20}, {110, 70});
        EXPECT_EQ(Run(), 0);
        EXPECT_FALSE(ListFiles(folder / name).empty()) << name;
        EXPECT_EQ(ListFiles(folder).size(), 1U);
    }
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace Orvik::SnipBench
