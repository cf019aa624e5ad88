#include "Core/System/Error/Handling/ErrorHandling.h"
#include "Core/System/Log/Site/LogSite.h"
#include "Tests/Core/System/Error/Handling/SignalledProgram.h"
#include "Tests/Support/ForkedProcess.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <mutex>
#include <stdexcept>
#include <sys/mman.h>
#include <thread>

// Each fault ends with the signal's own default action.
namespace Orvik::System::Error
{
namespace
{

using testing::HasSubstr;
using Tests::ForkedProcess;
using Tests::ForkedResult;

ForkedResult RunFault(const std::function<void()>& fault)
{
    return Tests::RunForked(
        [&fault]
        {
            LogPrinter printer;
            ErrorHandling::GetInstance();
            fault();
            return 0;
        });
}

void ExpectFault(const ForkedResult& result, int signal, const std::string& text)
{
    EXPECT_EQ(result.signal, signal);
    EXPECT_EQ(result.error, text + "\n");
    EXPECT_EQ(result.output, "System Error: " + text + "\n" + s_abortion);
}

TEST(ErrorHandlingFaults, FaultsAreReportedAndEndBySignalsOfTheirOwn)
{
    ExpectFault(RunFault([] { raise(SIGSEGV); }), SIGSEGV,
                "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).");
    ExpectFault(RunFault([] { raise(SIGBUS); }), SIGBUS,
                "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).");
    ExpectFault(RunFault([] { raise(SIGILL); }), SIGILL,
                "Signal 'SIGILL' was raised to due to an invalid instruction. Executable may be invalid.");
    ExpectFault(RunFault([] { raise(SIGFPE); }), SIGFPE,
                "Signal 'SIGFPE' was raised to due to an erronouse arithmetic operation such as a divide by zero.");
}

/// Memory that may not be touched.
volatile char& GetForbiddenByte()
{
    void* const page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return *static_cast<volatile char*>(page);
}

TEST(ErrorHandlingFaults, AnInvalidMemoryAccessIsReportedOnAnyThread)
{
    constexpr const char* text = "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).";
    ExpectFault(RunFault([] { GetForbiddenByte() = 1; }), SIGSEGV, text);
    ExpectFault(RunFault([] { std::thread([] { GetForbiddenByte() = 1; }).join(); }), SIGSEGV, text);
}

int Overflow(int depth)
{
    std::array<char, 4096> frame = {};
    volatile char& first = frame[0];
    first = static_cast<char>(depth);
    return depth < 0 ? 0 : Overflow(depth + 1) + first;
}

TEST(ErrorHandlingFaults, AnExhaustedStackIsReportedOnAnother)
{
    ExpectFault(RunFault([] { std::cout << Overflow(0); }), SIGSEGV,
                "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).");
}

TEST(ErrorHandlingFaults, AnAbortFromOutsideIsAnUnknownCondition)
{
    constexpr const char* text = "Signal 'SIGABRT' was raised due to an unknown abnormal condition.";
    ForkedProcess process([] { return RunProgram(false); });
    ASSERT_TRUE(process.WaitForOutput("running"));
    process.Send(SIGABRT);
    const ForkedResult result = process.Wait();
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(result.error, std::string(text) + "\n");
    EXPECT_EQ(result.output, std::string("running\nSystem Error: ") + text + "\n");
}

TEST(ErrorHandlingFaults, AnAbortAfterAReportedExceptionNamesIt)
{
    const ForkedResult result = RunFault(
        []
        {
            ErrorHandling::GetInstance().ReportStdException(std::runtime_error("x"), false);
            std::abort();
        });
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_THAT(result.error,
                testing::EndsWith("Signal 'SIGABRT' was raised due to an abnormal condition like an unhandled "
                                  "exception.\n"));
}

TEST(ErrorHandlingFaults, AnyOtherSignalIsUnknown)
{
    const ForkedResult result = RunFault([] { ErrorHandling::GetInstance().HandleSignal(SIGUSR1); });
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(result.error, "Unknown signal was raised.\n");
    EXPECT_EQ(result.output, std::string("System Error: Unknown signal was raised.\n") + s_abortion);
}

/// Faults while an exception is on its way.
struct FaultyDestructor
{
    ~FaultyDestructor() { raise(SIGFPE); }
};

TEST(ErrorHandlingFaults, AFaultWhileAnExceptionIsOnItsWaySaysSo)
{
    const ForkedResult result = RunFault(
        []
        {
            try
            {
                const FaultyDestructor faulty;
                throw std::runtime_error("on its way");
            }
            catch (const std::exception&)
            {
            }
        });
    EXPECT_EQ(result.signal, SIGFPE);
    EXPECT_EQ(result.error,
              "Signal 'SIGFPE' was raised to due to an erronouse arithmetic operation such as a divide by zero.\n"
              "Signal handler detected unhandled exceptions.\n");
}

TEST(ErrorHandlingFaults, AnExceptionThatIsBeingHandledThenIsReported)
{
    const ForkedResult result = RunFault(
        []
        {
            try
            {
                throw std::runtime_error("handled");
            }
            catch (const std::exception&)
            {
                try
                {
                    const FaultyDestructor faulty;
                    throw std::runtime_error("on its way");
                }
                catch (const std::exception&)
                {
                }
            }
        });
    EXPECT_EQ(result.signal, SIGFPE);
    EXPECT_THAT(result.error, HasSubstr("Unhandled Exception: std::exception\n\tMessage: handled\n"));
}

TEST(ErrorHandlingFaults, AReportThatWaitsForItselfIsGivenUp)
{
    // The log's receiver holds a lock when the fault comes, and needs it for the report.
    class Locked final : public Log::IMessageReceiver
    {
    public:
        [[nodiscard]] bool AcceptsStream(std::uint32_t /*stream*/) const override { return true; }
        void Receive(std::uint32_t /*stream*/, Log::MessageTypeID /*severity*/, const std::string& /*text*/) override
        {
            const std::lock_guard lock(m_mutex);
            raise(SIGSEGV);
        }

    private:
        std::mutex m_mutex;
    };
    const ForkedResult result = Tests::RunForked(
        []
        {
            Locked receiver;
            Log::SetReceiver(&receiver);
            ErrorHandling::GetInstance();
            Log::Write(Log::Context{Log::StreamID::System}, Log::MessageTypeID::Error, "fault");
            return 0;
        });
    EXPECT_EQ(result.signal, SIGSEGV);
}

} // namespace
} // namespace Orvik::System::Error
