// What becomes of a process in which the thread layer is misused: each failed assertion ends it with its report.
#include "Core/System/Runtime/CurrentThread.h"
#include "Core/System/Threads/ThreadManager.h"

#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Orvik::System::Threads
{
namespace
{

class ManagerWithOpenSlots : public ThreadManager
{
public:
    using ThreadManager::m_slots;
};

/// A regular expression for the report of that assertion in that function.
std::string Report(const std::string& condition, const std::string& message, const std::string& file,
                   const std::string& function)
{
    std::string pattern;
    const std::string report = "Assertion: " + condition + "\n\tMessage: " + message +
                               "\n\nCallstack:\n\t[0]: /Core/System/Threads/" + file + " at ";
    for (const char character : report)
    {
        if (std::string_view(".|[]()*+?{}^$\\").find(character) != std::string_view::npos)
            pattern += '\\';
        pattern += character;
    }
    return pattern + "[0-9]+: " + function + "\n";
}

void EndWithSlotIn(std::uint64_t state)
{
    auto manager = std::make_unique<ManagerWithOpenSlots>();
    std::destroy_at(&manager->m_slots[14]);
    std::construct_at(&manager->m_slots[14], state, 0U);
    manager.reset();
}

TEST(ThreadLayerDeathTest, ACurrentThreadThatIsUnknown)
{
    EXPECT_EXIT(
        {
            Runtime::SetCurrentThread(nullptr);
            (void)Thread::GetCurrent();
        },
        testing::KilledBySignal(SIGABRT),
        Report("pointer != nullptr", "Invalid null-pointer dereferenciation.", "Thread.cpp", "GetCurrent"));
}

TEST(ThreadLayerDeathTest, AManagerThatComesUpOnAnotherThread)
{
    EXPECT_EXIT(
        {
            Thread other;
            Runtime::SetCurrentThread(&other);
            ThreadManager manager;
            (void)manager.Initialize(nullptr);
        },
        testing::KilledBySignal(SIGABRT),
        Report("GetMainThread() == &Thread::GetCurrent()", "Initialization must be executes on the main thread.",
               "ThreadManager.cpp", "Initialize"));
}

TEST(ThreadLayerDeathTest, AManagerThatEndsBeforeItsThreads)
{
    for (const std::uint64_t state : {2, 3, 4})
    {
        EXPECT_EXIT(EndWithSlotIn(state), testing::KilledBySignal(SIGABRT),
                    Report("false", "Thread is not finished.", "ThreadManager.cpp", "~ThreadManager"));
    }
}

TEST(ThreadLayerDeathTest, AManagerThatEndsWithASlotInAnUnknownState)
{
    EXPECT_EXIT(EndWithSlotIn(7), testing::KilledBySignal(SIGABRT),
                Report("false", "Implementation of case directive is missing.", "ThreadManager.cpp", "~ThreadManager"));
}

} // namespace
} // namespace Orvik::System::Threads
