#include "Core/System/Log/LogSite.h"
#include "Tests/Support/GroupingLocale.h"
#include "Tests/Support/LogRecorder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <stdexcept>
#include <string>

namespace Orvik::System::Log
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Context s_context{StreamID::System};

/// Takes no stream at all, and knows whether it got a message nevertheless.
class DeafReceiver final : public IMessageReceiver
{
public:
    DeafReceiver() : m_previous(SetReceiver(this)) {}
    ~DeafReceiver() override { SetReceiver(m_previous); }
    DeafReceiver(const DeafReceiver&) = delete;
    DeafReceiver& operator=(const DeafReceiver&) = delete;

    [[nodiscard]] bool AcceptsStream(std::uint32_t /*stream*/) const override { return false; }
    void Receive(std::uint32_t /*stream*/, MessageTypeID /*severity*/, const std::string& /*text*/) override
    {
        m_hasReceived = true;
    }
    [[nodiscard]] bool HasReceived() const { return m_hasReceived; }

private:
    IMessageReceiver* m_previous;
    bool m_hasReceived = false;
};

/// Counts how often it is put into a text.
struct CountingPiece
{
    int* insertions;
};

std::ostream& operator<<(std::ostream& stream, const CountingPiece& piece)
{
    ++*piece.insertions;
    return stream << "piece";
}

TEST(LogContext, BelongsToTheDefaultStreamAtSeverityInfoAtFirst)
{
    constexpr Context context;
    EXPECT_EQ(context.stream, 0x1U);
    EXPECT_EQ(context.severity, 2U);
}

TEST(LogContext, PassesWhatIsNotBelowItsSeverity)
{
    for (std::uint32_t threshold = 0; threshold <= 6; ++threshold)
    {
        for (std::uint32_t severity = 0; severity <= 5; ++severity)
        {
            EXPECT_EQ(IsEnabled(Context{Default, threshold}, static_cast<MessageTypeID>(severity)),
                      severity >= threshold)
                << severity << " at " << threshold;
        }
    }
}

TEST(LogContext, AlwaysPassesAnyThreshold)
{
    EXPECT_TRUE(IsEnabled(Context{Default, 6}, MessageTypeID::Always));
    EXPECT_TRUE(IsEnabled(Context{Default, 0xFF}, MessageTypeID::Always));
}

TEST(LogContext, ThresholdIsTheLowByte)
{
    EXPECT_TRUE(IsEnabled(Context{Default, 0x100}, MessageTypeID::Debug));
    EXPECT_FALSE(IsEnabled(Context{Default, 0x103}, MessageTypeID::Info));
}

TEST(LogSite, MessageIsThePiecesInTheirOrder)
{
    Tests::LogRecorder recorder;
    Write(s_context, MessageTypeID::Error, "No display ", std::uint16_t{7}, " of ", 2.5, std::string(", sorry"), '.');
    EXPECT_THAT(recorder.GetLines(), ElementsAre("System Error: No display 7 of 2.5, sorry."));
}

TEST(LogSite, PathStandsBetweenDoubleQuotes)
{
    Tests::LogRecorder recorder;
    Write(s_context, MessageTypeID::Info, "From '", std::filesystem::path("/a b/c"), "'.");
    EXPECT_THAT(recorder.GetLines(), ElementsAre("System Info: From '\"/a b/c\"'."));
}

TEST(LogSite, NumbersAreWrittenAlikeInEveryLocale)
{
    const Tests::GroupingLocale locale;
    const Tests::LogRecorder log;
    Write(s_context, MessageTypeID::Error, 1234567, " ", 0.5);
    EXPECT_THAT(log.GetLines(), ElementsAre("System Error: 1234567 0.5"));
}

TEST(LogSite, SeverityBelowTheContextIsDropped)
{
    Tests::LogRecorder recorder;
    Write(s_context, MessageTypeID::Debug, "no");
    Write(s_context, MessageTypeID::Verbose, "no");
    Write(s_context, MessageTypeID::Info, "yes");
    Write(Context{StreamID::Graphics, 0}, MessageTypeID::Debug, "yes");
    Write(Context{StreamID::Graphics, 6}, MessageTypeID::Critical, "no");
    Write(Context{StreamID::Graphics, 6}, MessageTypeID::Always, "yes");
    EXPECT_THAT(recorder.GetLines(), ElementsAre("System Info: yes", "Graphics Debug: yes", "Graphics Always: yes"));
}

TEST(LogSite, DroppedMessageIsNotBuilt)
{
    int insertions = 0;
    {
        const Tests::LogRecorder recorder;
        Write(s_context, MessageTypeID::Verbose, CountingPiece{&insertions});
    }
    const DeafReceiver receiver;
    Write(s_context, MessageTypeID::Error, CountingPiece{&insertions});
    EXPECT_EQ(insertions, 0);
    EXPECT_FALSE(receiver.HasReceived());
}

TEST(LogSite, WithoutAReceiverMessagesAreDroppedWithoutAWord)
{
    IMessageReceiver* const previous = SetReceiver(nullptr);
    int insertions = 0;
    testing::internal::CaptureStderr();
    Write(s_context, MessageTypeID::Error, CountingPiece{&insertions});
    Write(s_context, MessageTypeID::Always, CountingPiece{&insertions});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(insertions, 0);
    EXPECT_EQ(GetReceiver(), nullptr);
    SetReceiver(previous);
}

TEST(LogSite, ReceiverIsReplacedAndReturned)
{
    IMessageReceiver* const previous = GetReceiver();
    {
        Tests::LogRecorder first;
        {
            const Tests::LogRecorder second;
            EXPECT_EQ(GetReceiver(), &second);
            Write(s_context, MessageTypeID::Info, "to the second");
        }
        EXPECT_EQ(GetReceiver(), &first);
        EXPECT_THAT(first.GetLines(), IsEmpty());
    }
    EXPECT_EQ(GetReceiver(), previous);
}

TEST(LogSite, WhatTheReceiverThrowsLeavesTheSite)
{
    class ThrowingReceiver final : public IMessageReceiver
    {
    public:
        [[nodiscard]] bool AcceptsStream(std::uint32_t /*stream*/) const override { return true; }
        void Receive(std::uint32_t /*stream*/, MessageTypeID /*severity*/, const std::string& /*text*/) override
        {
            throw std::runtime_error("full");
        }
    };
    ThrowingReceiver receiver;
    IMessageReceiver* const previous = SetReceiver(&receiver);
    EXPECT_THROW(Write(s_context, MessageTypeID::Error, "text"), std::runtime_error);
    SetReceiver(previous);
}

} // namespace
} // namespace Orvik::System::Log
