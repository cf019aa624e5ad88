#include "Desktops/Wayland/PointerTrack.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

using System::Math::Point;

/// As a compositor does it that stops its pointer at the surface's edge and reports the way all the same.
class Mouse
{
public:
    Mouse(PointerTrack& track, const SurfaceVector& place, const SurfaceVector& last)
        : m_track(track), m_place(place), m_last(last)
    {
        m_track.Enter(m_place);
    }

    void Move(double x, double y)
    {
        m_place = {std::clamp(m_place.x + x, 0.0, m_last.x), std::clamp(m_place.y + y, 0.0, m_last.y)};
        m_track.Move(m_place, SurfaceVector{x, y});
    }

private:
    PointerTrack& m_track;
    SurfaceVector m_place;
    SurfaceVector m_last;
};

TEST(PointerTrack, IsInTheMiddleBeforeThereIsAPointer)
{
    PointerTrack track;
    track.SetSpace({1280, 720}, {1280, 720});
    EXPECT_EQ(track.GetPixel(), (Point{640, 360}));
    // The compositor may say later how large the surface is.
    track.SetSpace({1280, 720}, {640, 360});
    EXPECT_EQ(track.GetPixel(), (Point{640, 360}));
}

TEST(PointerTrack, BeginsWhereThePointerEnters)
{
    PointerTrack track;
    track.SetSpace({1280, 720}, {1280, 720});
    track.Enter({300.0, 200.0});
    EXPECT_EQ(track.GetPixel(), (Point{300, 200}));
}

TEST(PointerTrack, StaysWhereItWasPlacedBeforeThePointerEnters)
{
    PointerTrack track;
    track.SetSpace({1280, 720}, {1280, 720});
    track.Place({641, 360});
    track.Place({642, 361});
    track.Enter({300.0, 200.0});
    EXPECT_EQ(track.GetPixel(), (Point{642, 361}));
    track.Move({310.0, 195.0}, std::nullopt);
    EXPECT_EQ(track.GetPixel(), (Point{652, 356}));
    // One that was away and comes again is pointed with.
    track.Enter({50.0, 60.0});
    EXPECT_EQ(track.GetPixel(), (Point{50, 60}));
}

TEST(PointerTrack, FindsEachPixelAtAFractionalScale)
{
    PointerTrack track;
    track.SetSpace({1280, 720}, {853, 480});
    for (std::int32_t pixel = 0; pixel < 1280; ++pixel)
    {
        // The protocol reports places in 256ths.
        const double place = std::round(pixel * 853.0 / 1280.0 * 256.0) / 256.0;
        track.Enter({place, 0.0});
        ASSERT_EQ(track.GetPixel().x, pixel);
    }
}

TEST(PointerTrack, IsMovedByPixelsAndGoesOnFromThere)
{
    PointerTrack track;
    track.SetSpace({1280, 720}, {1280, 720});
    Mouse mouse(track, {400.0, 250.0}, {1279.0, 719.0});
    track.Place({401, 250});
    track.Place({402, 251});
    EXPECT_EQ(track.GetPixel(), (Point{402, 251}));
    mouse.Move(100.0, 50.0);
    EXPECT_EQ(track.GetPixel(), (Point{502, 301}));
    mouse.Move(-100.0, -50.0);
    EXPECT_EQ(track.GetPixel(), (Point{402, 251}));
}

TEST(PointerTrack, StaysOnTheSurface)
{
    PointerTrack track;
    track.SetSpace({1280, 720}, {1280, 720});
    track.Enter({400.0, 250.0});
    track.Place({-5, 10'000});
    EXPECT_EQ(track.GetPixel(), (Point{0, 719}));
    // Of a surface that has implicitly grabbed the pointer, places beyond are reported.
    track.Enter({-20.0, 900.0});
    EXPECT_EQ(track.GetPixel(), (Point{0, 719}));
}

TEST(PointerTrack, ReachesAllColumnsAndRowsBesideTheCompositorsPointer)
{
    PointerTrack track;
    track.SetSpace({1280, 720}, {1280, 720});
    Mouse mouse(track, {400.0, 250.0}, {1279.0, 719.0});
    track.Place({700, 100}); // 300 to the right, 150 up
    for (int step = 0; step < 200; ++step)
        mouse.Move(-10.0, 10.0);
    EXPECT_EQ(track.GetPixel(), (Point{0, 719}));
    // They have come together at the edges: the way back is the same.
    mouse.Move(50.0, -60.0);
    EXPECT_EQ(track.GetPixel(), (Point{50, 659}));
    for (int step = 0; step < 200; ++step)
        mouse.Move(10.0, -10.0);
    EXPECT_EQ(track.GetPixel(), (Point{1279, 0}));
}

TEST(PointerTrack, ReachesTheLastColumnOfAScaledSurfaceWhoseEdgeStopsThePointerAUnitEarly)
{
    PointerTrack track;
    track.SetSpace({1280, 720}, {640, 360});
    Mouse mouse(track, {600.0, 300.0}, {639.0, 359.0});
    mouse.Move(100.0, 100.0);
    EXPECT_EQ(track.GetPixel(), (Point{1279, 719}));
    // Slowly as well.
    mouse.Move(-20.0, -20.0);
    EXPECT_EQ(track.GetPixel(), (Point{1238, 678}));
    for (int step = 0; step < 80; ++step)
        mouse.Move(0.3, 0.3);
    EXPECT_EQ(track.GetPixel(), (Point{1279, 719}));
    mouse.Move(-39.0, -59.0);
    EXPECT_EQ(track.GetPixel(), (Point{1200, 600}));
}

TEST(PointerTrack, ReachesTheEdgeWhereNoWayIsReported)
{
    PointerTrack track;
    track.SetSpace({1280, 720}, {1280, 720});
    track.Enter({400.0, 250.0});
    track.Place({390, 260});
    track.Move({500.0, 300.0}, std::nullopt);
    EXPECT_EQ(track.GetPixel(), (Point{490, 310}));
    track.Move({1279.0, 300.0}, std::nullopt);
    EXPECT_EQ(track.GetPixel(), (Point{1279, 310}));
    track.Move({1200.0, 0.0}, std::nullopt);
    EXPECT_EQ(track.GetPixel(), (Point{1200, 0}));
}

// sway reports no place that it has reported before.
TEST(PointerTrack, GoesOnWhereThePointerIsHeldUpAndOnlyTheWayIsReported)
{
    PointerTrack track;
    track.SetSpace({1280, 720}, {1280, 720});
    track.Enter({400.0, 250.0});
    track.Move({1279.0, 719.0}, SurfaceVector{900.0, 500.0});
    track.Place({1278, 718});
    track.Push({3.0, 0.0});
    EXPECT_EQ(track.GetPixel(), (Point{1279, 718}));
    track.Push({0.0, 3.0});
    EXPECT_EQ(track.GetPixel(), (Point{1279, 719}));
    // Where the edge is reached both are at the same place again.
    track.Move({1278.0, 718.0}, SurfaceVector{-1.0, -1.0});
    EXPECT_EQ(track.GetPixel(), (Point{1278, 718}));
    track.Move({0.0, 0.0}, SurfaceVector{-2000.0, -2000.0});
    track.Place({2, 1});
    track.Push({-1.0, -1.0});
    EXPECT_EQ(track.GetPixel(), (Point{1, 0}));
}

TEST(PointerTrack, AWayAloneMovesNothingAwayFromTheEdges)
{
    PointerTrack track;
    track.SetSpace({1280, 720}, {1280, 720});
    track.Enter({400.0, 250.0});
    track.Push({5.0, -5.0});
    EXPECT_EQ(track.GetPixel(), (Point{400, 250}));
    track.Move({0.0, 250.0}, SurfaceVector{-400.0, 0.0});
    track.Push({5.0, 5.0});
    EXPECT_EQ(track.GetPixel(), (Point{0, 250}));
}

// The pointer is held up just before the end, or that is rounded to the end; the places on the way back are as well.
TEST(PointerTrack, FromAnEdgeThatIsRoundedUpItGoesBackByPixels)
{
    for (const double trifle : {0.0, 1.0 / 256.0})
    {
        PointerTrack track;
        track.SetSpace({800, 600}, {800, 600});
        track.Enter({760.0, 570.0});
        track.Move({800.0 - trifle, 600.0 - trifle}, SurfaceVector{300.0, 300.0});
        EXPECT_EQ(track.GetPixel(), (Point{799, 599}));
        track.Place({798, 598});
        track.Push({3.0, 3.0});
        EXPECT_EQ(track.GetPixel(), (Point{799, 599}));
        track.Move({799.0 - trifle, 599.0 - trifle}, SurfaceVector{-1.0, -1.0});
        EXPECT_EQ(track.GetPixel(), (Point{798, 598})) << trifle;
        track.Move({0.0, 0.0}, SurfaceVector{-900.0, -900.0});
        track.Move({7.0, 5.0}, SurfaceVector{7.0, 5.0});
        EXPECT_EQ(track.GetPixel(), (Point{7, 5})) << "there it begins anew";
    }
}

TEST(PointerTrack, WhatItHasGoneOnIsKeptOnTheWayBack)
{
    PointerTrack track;
    track.SetSpace({1280, 720}, {1280, 720});
    track.Enter({0.0, 250.0});
    track.Place({50, 250});
    track.Push({-0.75, 0.0});
    EXPECT_EQ(track.GetPixel().x, 49);
    track.Move({1.0, 250.0}, SurfaceVector{1.0, 0.0});
    EXPECT_EQ(track.GetPixel().x, 50);
    track.Move({10.0, 250.0}, SurfaceVector{9.0, 0.0});
    EXPECT_EQ(track.GetPixel().x, 59);
}

} // namespace
} // namespace Orvik::Desktops::Wayland
