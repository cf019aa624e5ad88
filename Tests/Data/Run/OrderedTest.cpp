#include "Data/Run/Ordered.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <stdexcept>

namespace Orvik::Data
{
namespace
{

TEST(OrderedWork, ResultsComeInTheirOrder)
{
    constexpr std::size_t count = 2'000;
    std::size_t next = 0;
    OrderedWork<std::size_t>::Run(
        count,
        [](std::size_t index)
        {
            if (index % 7 == 0)
                std::this_thread::sleep_for(std::chrono::microseconds(50));
            return index * 3;
        },
        [&next](std::size_t index, std::size_t result)
        {
            EXPECT_EQ(index, next++);
            EXPECT_EQ(result, index * 3);
        });
    EXPECT_EQ(next, count);
}

TEST(OrderedWork, NothingIsDoneForNothing)
{
    OrderedWork<int>::Run(
        0, [](std::size_t) { return 1; }, [](std::size_t, int) { FAIL(); });
}

TEST(OrderedWork, FewResultsWait)
{
    std::atomic<std::size_t> begun = 0;
    std::size_t consumed = 0;
    std::size_t most = 0;
    OrderedWork<int>::Run(
        1'000,
        [&begun](std::size_t)
        {
            ++begun;
            return 0;
        },
        [&](std::size_t, int)
        {
            if (++consumed % 50 == 0)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            most = std::max(most, begun - consumed);
        });
    EXPECT_LE(most, 6 * GetWorkerCount());
}

TEST(OrderedWork, AFailureOfTheWorkEndsAll)
{
    const auto run = []
    {
        OrderedWork<int>::Run(
            1'000,
            [](std::size_t index) -> int
            {
                if (index == 500)
                    throw std::runtime_error("five hundred");
                return 0;
            },
            [](std::size_t, int) {});
    };
    EXPECT_THROW(run(), std::runtime_error);
}

TEST(OrderedWork, AFailureOfTheConsumerEndsAll)
{
    const auto run = []
    {
        OrderedWork<int>::Run(
            1'000, [](std::size_t) { return 0; },
            [](std::size_t index, int)
            {
                if (index == 5)
                    throw std::runtime_error("five");
            });
    };
    EXPECT_THROW(run(), std::runtime_error);
}

} // namespace
} // namespace Orvik::Data
