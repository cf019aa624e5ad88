#include "Core/System/Desktop/PointerEvent.h"

#include <gtest/gtest.h>
#include <thread>

namespace Orvik::System::Device::Cursor
{
namespace
{

TEST(PointerEvent, ItsPlaceIsKnownWhileItsScopeLasts)
{
    const Math::Point place = {-3, 4};
    EXPECT_EQ(PointerEventScope::GetPosition(), nullptr);
    {
        const PointerEventScope scope(place);
        EXPECT_EQ(PointerEventScope::GetPosition(), &place);
    }
    EXPECT_EQ(PointerEventScope::GetPosition(), nullptr);
}

TEST(PointerEvent, OtherThreadsAreNotAsked)
{
    const Math::Point place = {-3, 4};
    const PointerEventScope scope(place);
    const Math::Point* found = &place;
    std::thread([&found] { found = PointerEventScope::GetPosition(); }).join();
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(PointerEventScope::GetPosition(), &place);
}

TEST(PointerEvent, AnOwnMotionIsTakenOnce)
{
    (void)TakeOwnMotion();
    EXPECT_FALSE(TakeOwnMotion());
    AnnounceOwnMotion();
    AnnounceOwnMotion();
    EXPECT_TRUE(TakeOwnMotion());
    EXPECT_FALSE(TakeOwnMotion());
}

} // namespace
} // namespace Orvik::System::Device::Cursor
