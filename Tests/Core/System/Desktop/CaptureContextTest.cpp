#include "Core/System/Desktop/CaptureContext.h"

#include "Core/System/Desktop/Window.h"
#include "Core/System/Error/SystemError.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/NullDesktop.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace Orvik::System::Device::Display
{
namespace
{

using Desktop::Window;
using Desktop::WindowState;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::NullDesktop;

/// The null desktop refuses with the system's fifth error.
std::string GetFailureLine()
{
    std::string message = Error::GetErrorMessagePlatform(5);
    message.resize(message.find_last_not_of("\r\n.") + 1);
    return "System Error: Capture failed: " + message + " (5).";
}

/// What a callback was asked for, and the memory that it gave.
struct Receiver
{
    int calls = 0;
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint64_t bytes = 0;
    std::vector<unsigned char> memory;

    CaptureContext::Callback GetCallback()
    {
        return [this](std::uint16_t askedWidth, std::uint16_t askedHeight, std::uint64_t askedBytes)
        {
            ++calls;
            width = askedWidth;
            height = askedHeight;
            bytes = askedBytes;
            memory.assign(askedBytes, 0xCD);
            return Types::Buffer<unsigned char>{memory.data(), memory.size()};
        };
    }
};

class CaptureContextTest : public testing::Test
{
protected:
    CaptureContextTest()
    {
        Tests::NullDesktop::GetInstance().Reset();
        Tests::NullDesktop::GetInstance().screenPixel = [](std::int32_t x, std::int32_t y)
        { return static_cast<std::uint32_t>(x & 0xFF) | static_cast<std::uint32_t>(y & 0xFF) << 8 | 0x44330000U; };
    }
    ~CaptureContextTest() override { Tests::NullDesktop::GetInstance().Reset(); }

    Tests::NullDesktop& m_desktop = Tests::NullDesktop::GetInstance();
    CaptureContext m_context;
    Receiver m_receiver;
};

class CaptureWindowTest : public CaptureContextTest
{
protected:
    CaptureWindowTest() : m_window(nullptr, "Overlay", {0, 0}, {10, 10}, Desktop::WindowType::Overlay)
    {
        EXPECT_TRUE(m_window.Create());
        EXPECT_TRUE(m_context.Initialize(1, {0, 0, 2, 2}));
        m_context.SetWindow(&m_window);
    }

    void Show()
    {
        const Window::ScopedLock lock = m_window.Lock();
        m_window.Show(lock);
    }

    /// The calls that show and hide, without those that belong to the window's creation.
    std::vector<std::string> GetVisibilityCalls() const
    {
        std::vector<std::string> calls;
        std::copy_if(m_desktop.windowCalls.begin(), m_desktop.windowCalls.end(), std::back_inserter(calls),
                     [](const std::string& call) { return call == "Show" || call == "Hide"; });
        return calls;
    }

    Window m_window;
};

} // namespace

TEST_F(CaptureContextTest, DeliversPackedRowsFromTheTop)
{
    ASSERT_TRUE(m_context.Initialize(1, {5, 7, 7, 9}));
    EXPECT_TRUE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_EQ(m_receiver.calls, 1);
    EXPECT_EQ(m_receiver.width, 2);
    EXPECT_EQ(m_receiver.height, 2);
    EXPECT_EQ(m_receiver.bytes, 16U);
    EXPECT_THAT(m_receiver.memory, ElementsAre(5, 7, 0x33, 0x44, 6, 7, 0x33, 0x44, 5, 8, 0x33, 0x44, 6, 8, 0x33, 0x44));
}

TEST_F(CaptureContextTest, DeliversOpaquePixelsIfAsked)
{
    constexpr std::int32_t width = 71;
    constexpr std::int32_t height = 67;
    ASSERT_TRUE(m_context.Initialize(1, {0, 0, width, height}));
    EXPECT_TRUE(m_context.Capture(m_receiver.GetCallback(), FourthByte::Opaque));
    ASSERT_EQ(m_receiver.memory.size(), std::size_t{width} * height * 4);
    for (std::int32_t pixel = 0; pixel < width * height; ++pixel)
    {
        const unsigned char* const bytes = m_receiver.memory.data() + std::ptrdiff_t{pixel} * 4;
        ASSERT_THAT(std::vector<int>(bytes, bytes + 4), ElementsAre(pixel % width, pixel / width, 0x33, 255)) << pixel;
    }
}

TEST_F(CaptureContextTest, ADisplayOfFullHdAsksForItsBytes)
{
    ASSERT_TRUE(m_context.Initialize(1, {0, 0, 1920, 1080}));
    EXPECT_TRUE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_EQ(m_receiver.width, 1920);
    EXPECT_EQ(m_receiver.height, 1080);
    EXPECT_EQ(m_receiver.bytes, 8294400U);
}

TEST_F(CaptureContextTest, ARegionLeftOfTheOriginIsReadThere)
{
    ASSERT_TRUE(m_context.Initialize(1, {-1920, -3, -1918, -2}));
    EXPECT_TRUE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_THAT(m_desktop.captures, ElementsAre(Math::Rectangle{-1920, -3, -1918, -2}));
    EXPECT_THAT(m_receiver.memory, ElementsAre(0x80, 0xFD, 0x33, 0x44, 0x81, 0xFD, 0x33, 0x44));
}

TEST_F(CaptureContextTest, WithoutAWindowNoWindowIsCalled)
{
    ASSERT_TRUE(m_context.Initialize(1, {0, 0, 2, 2}));
    EXPECT_TRUE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_THAT(m_desktop.windowCalls, IsEmpty());
}

TEST_F(CaptureContextTest, CapturesAsOftenAsAsked)
{
    ASSERT_TRUE(m_context.Initialize(1, {0, 0, 1, 1}));
    EXPECT_TRUE(m_context.Capture(m_receiver.GetCallback()));
    m_desktop.screenPixel = [](std::int32_t, std::int32_t) { return 0x04030201U; };
    EXPECT_TRUE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_EQ(m_receiver.calls, 2);
    EXPECT_THAT(m_receiver.memory, ElementsAre(1, 2, 3, 4));
}

TEST_F(CaptureContextTest, RefusesARegionOfNoPixels)
{
    const Tests::LogRecorder recorder;
    EXPECT_FALSE(m_context.Initialize(1, {10, 10, 10, 20}));
    EXPECT_FALSE(m_context.Initialize(1, {10, 10, 20, 10}));
    EXPECT_THAT(recorder.GetLines(), IsEmpty());
}

TEST_F(CaptureContextTest, RefusesASideThatIsTooLong)
{
    EXPECT_FALSE(m_context.Initialize(1, {0, 0, 65536, 1}));
    EXPECT_FALSE(m_context.Initialize(1, {0, 0, 1, 65536}));
    EXPECT_FALSE(m_context.Initialize(1, {-2147483647, 0, 0, 1}));
    EXPECT_TRUE(m_context.Initialize(1, {0, 0, 65535, 1}));
    EXPECT_TRUE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_EQ(m_receiver.width, 65535);
    EXPECT_EQ(m_receiver.bytes, 262140U);
}

TEST_F(CaptureContextTest, ResourcesThatCannotBeHadAreReportedWithoutALine)
{
    m_desktop.captureInitializes = false;
    const Tests::LogRecorder recorder;
    EXPECT_FALSE(m_context.Initialize(1, {0, 0, 2, 2}));
    EXPECT_THAT(recorder.GetLines(), IsEmpty());
}

TEST_F(CaptureContextTest, AFailingCopyIsLoggedAndCallsNoOne)
{
    ASSERT_TRUE(m_context.Initialize(1, {0, 0, 2, 2}));
    m_desktop.captureSucceeds = false;
    const Tests::LogRecorder recorder;
    EXPECT_FALSE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_EQ(m_receiver.calls, 0);
    EXPECT_THAT(recorder.GetLines(), ElementsAre(GetFailureLine()));
}

TEST_F(CaptureContextTest, CaptureBeforeInitializeFails)
{
    const Tests::LogRecorder recorder;
    EXPECT_FALSE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_EQ(m_receiver.calls, 0);
    EXPECT_THAT(recorder.GetLines(), ElementsAre(GetFailureLine()));
}

TEST_F(CaptureContextTest, AFailedInitializeLeavesNothingOfTheOneBefore)
{
    ASSERT_TRUE(m_context.Initialize(1, {0, 0, 2, 2}));
    EXPECT_FALSE(m_context.Initialize(1, {0, 0, 65536, 2}));
    EXPECT_FALSE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_EQ(m_receiver.calls, 0);
}

TEST_F(CaptureContextTest, ASuccessfulCaptureIsQuietAtTheUsualSeverity)
{
    ASSERT_TRUE(m_context.Initialize(1, {0, 0, 2, 2}));
    const Tests::LogRecorder recorder;
    EXPECT_TRUE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_THAT(recorder.GetLines(), IsEmpty());
}

TEST_F(CaptureContextTest, ABufferOneByteTooShortIsAFaultBeforeAnyPixelIsCopied)
{
    ASSERT_TRUE(m_context.Initialize(1, {0, 0, 2, 2}));
    std::vector<unsigned char> memory(16, 0xCD);
    const auto callback = [&memory](std::uint16_t, std::uint16_t, std::uint64_t bytes) {
        return Types::Buffer<unsigned char>{memory.data(), bytes - 1};
    };
    EXPECT_ASSERTION((void)m_context.Capture(callback), "targetImageBuffer.GetSize() >= requiredSize",
                     "Provided buffer for image is expected to match or exceed the required size.");
    EXPECT_EQ(memory, std::vector<unsigned char>(16, 0xCD));
}

TEST_F(CaptureContextTest, WhereTheProgramGoesOnAShortBufferIsNotWritten)
{
    ASSERT_TRUE(m_context.Initialize(1, {0, 0, 2, 2}));
    std::vector<unsigned char> memory(16, 0xCD);
    const auto callback = [&memory](std::uint16_t, std::uint16_t, std::uint64_t bytes) {
        return Types::Buffer<unsigned char>{memory.data(), bytes - 1};
    };
    Error::AssertionHandler const previous = Error::SetAssertionHandler([](const Error::AssertionInfo&) {});
    Error::SetContinueAfterAssertion(true);
    EXPECT_FALSE(m_context.Capture(callback));
    Error::SetContinueAfterAssertion(false);
    Error::SetAssertionHandler(previous);
    EXPECT_EQ(memory, std::vector<unsigned char>(16, 0xCD));
}

TEST_F(CaptureContextTest, ALongerBufferIsFilledOnlyAsFarAsThePicture)
{
    ASSERT_TRUE(m_context.Initialize(1, {0, 0, 1, 1}));
    std::vector<unsigned char> memory(6, 0xCD);
    EXPECT_TRUE(m_context.Capture(
        [&memory](std::uint16_t, std::uint16_t, std::uint64_t) {
            return Types::Buffer<unsigned char>{memory.data(), memory.size()};
        }));
    EXPECT_THAT(memory, ElementsAre(0, 0, 0x33, 0x44, 0xCD, 0xCD));
}

TEST_F(CaptureWindowTest, AHiddenWindowStaysHidden)
{
    EXPECT_TRUE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_EQ(m_window.GetState(), WindowState::Hidden);
    EXPECT_THAT(GetVisibilityCalls(), IsEmpty());
}

TEST_F(CaptureWindowTest, AVisibleWindowIsHiddenForTheCopyAndShownAgain)
{
    Show();
    WindowState stateAtCopy = WindowState::Undefined;
    m_desktop.screenPixel = [&](std::int32_t, std::int32_t)
    {
        stateAtCopy = m_window.GetState();
        return 0U;
    };
    EXPECT_TRUE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_EQ(stateAtCopy, WindowState::Hidden);
    EXPECT_EQ(m_window.GetState(), WindowState::Visible);
    EXPECT_THAT(GetVisibilityCalls(), ElementsAre("Show", "Hide", "Show"));
}

TEST_F(CaptureWindowTest, AVisibleWindowComesBackAfterAFailedCopy)
{
    Show();
    m_desktop.captureSucceeds = false;
    EXPECT_FALSE(m_context.Capture(m_receiver.GetCallback()));
    EXPECT_EQ(m_window.GetState(), WindowState::Visible);
}

TEST_F(CaptureWindowTest, NoOtherThreadGetsTheWindowsLockMeanwhile)
{
    std::atomic<bool> hasLock = false;
    std::thread other;
    bool hadLockMeanwhile = true;
    const CaptureContext::Callback inner = m_receiver.GetCallback();
    EXPECT_TRUE(m_context.Capture(
        [&](std::uint16_t width, std::uint16_t height, std::uint64_t bytes)
        {
            other = std::thread(
                [&]
                {
                    const Window::ScopedLock lock = m_window.Lock();
                    hasLock = true;
                });
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            hadLockMeanwhile = hasLock;
            return inner(width, height, bytes);
        }));
    other.join();
    EXPECT_FALSE(hadLockMeanwhile);
    EXPECT_TRUE(hasLock);
}

} // namespace Orvik::System::Device::Display
