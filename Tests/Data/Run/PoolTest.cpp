#include "Data/Run/Pool.h"

#include "Data/Run/Ordered.h"

#include <atomic>
#include <gtest/gtest.h>

namespace Orvik::Data
{
namespace
{

TEST(Pool, WhatComesBackIsLentAgain)
{
    int made = 0;
    Pool<int> pool([&made] { return std::make_unique<int>(++made); });
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(*pool.Borrow().Get(), 1);
    const auto first = pool.Borrow();
    const auto second = pool.Borrow();
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_EQ(made, 2);
}

TEST(Pool, NothingIsLentWhereNothingCanBeMade)
{
    Pool<int> pool([] { return std::unique_ptr<int>(); });
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(pool.Borrow().Get(), nullptr);
}

TEST(Pool, NoTwoThreadsHaveOneAtOnce)
{
    struct Object
    {
        std::atomic<int> users = 0;
    };
    std::atomic<std::size_t> made = 0;
    Pool<Object> pool(
        [&made]
        {
            ++made;
            return std::make_unique<Object>();
        });
    OrderedWork<int>::Run(
        2'000,
        [&pool](std::size_t)
        {
            const auto loan = pool.Borrow();
            const int users = ++loan.Get()->users;
            --loan.Get()->users;
            return users;
        },
        [](std::size_t, int users) { EXPECT_EQ(users, 1); });
    EXPECT_LE(made, GetWorkerCount());
}

} // namespace
} // namespace Orvik::Data
