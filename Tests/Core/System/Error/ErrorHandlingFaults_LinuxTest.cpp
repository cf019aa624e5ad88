#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Tests/Core/System/Error/SignalledProgram.h"
#include "Tests/Support/ForkedProcess.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <malloc.h>
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

/// Ends in a fault within the allocator, which holds its lock then. False where memory is the sanitizer's.
bool FaultInTheAllocator()
{
    if (mallinfo2().arena == 0)
        return false;
    std::thread([] {}).join(); // a process that never had a second thread takes no lock
    // Too large for a thread's own store, and not at the heap's end: it goes into the list that the next request walks.
    constexpr std::size_t size = 4096;
    void* const block = std::malloc(size);
    const auto links = reinterpret_cast<std::uintptr_t>(block);
    void* const neighbour = std::malloc(size);
    std::free(block);
    // Where the one before it would lie.
    *reinterpret_cast<volatile std::uintptr_t*>(links + sizeof(std::uintptr_t)) = 16;
    void* const larger = std::malloc(2 * size);
    return larger == neighbour;
}

constexpr int s_noAllocator = 77;

int FaultInTheAllocatorOfARun()
{
    // As a program's own is. This one was opened anew, and would ask for its buffer at the first line.
    (void)std::setvbuf(stderr, nullptr, _IONBF, 0);
    LogPrinter printer;
    ErrorHandling::GetInstance();
    const Program program(true);
    std::cout << "running" << std::endl;
    (void)FaultInTheAllocator();
    return s_noAllocator;
}

TEST(ErrorHandlingFaults, AFaultWithinTheAllocatorIsReportedAndEndsByItsOwnSignal)
{
    const std::int64_t begin = Time::GetMonotonicNanoseconds();
    ForkedProcess process(&FaultInTheAllocatorOfARun);
    const ForkedResult result = process.Wait();
    if (result.exitCode == s_noAllocator)
        GTEST_SKIP() << "The allocator isn't the C library's.";
    EXPECT_EQ(result.signal, SIGSEGV);
    EXPECT_EQ(result.error, "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).\n");
    EXPECT_LT(Time::GetMonotonicNanoseconds() - begin, 15'000'000'000);
}

TEST(ErrorHandlingFaults, ARequestWhileAFaultIsBeingReportedAborts)
{
    for (const int request : {SIGTERM, SIGINT})
    {
        ForkedProcess process(&FaultInTheAllocatorOfARun);
        ASSERT_TRUE(process.WaitForOutput("running"));
        for (int poll = 0; poll < 1000 && process.IsRunning() && process.ReadError().empty(); ++poll)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        process.Send(request);
        // Beyond the limits of both; without one it would stand for good.
        for (int poll = 0; poll < 1500 && process.IsRunning(); ++poll)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        EXPECT_FALSE(process.IsRunning());
        if (process.IsRunning())
            process.Send(SIGKILL);
        const ForkedResult result = process.Wait();
        if (result.exitCode == s_noAllocator)
            GTEST_SKIP() << "The allocator isn't the C library's.";
        EXPECT_EQ(result.signal, SIGABRT);
    }
}

} // namespace
} // namespace Orvik::System::Error
