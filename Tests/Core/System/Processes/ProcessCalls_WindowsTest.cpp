
#include "Core/System/Processes/Process.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/ReplacedCalls_Windows.h"
#include "Tests/Support/Texts.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>
#include <psapi.h>
#include <string>
#include <vector>

namespace Orvik::System::Processes
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Tests::MatchesPattern;

std::vector<DWORD> s_ids;          ///< of the running processes
std::vector<std::string> s_opened; ///< id and access of each
std::size_t s_moduleCount = 0;     ///< of each process

/// A handle that can be closed, whichever process it is asked for.
HANDLE WINAPI Open(DWORD access, BOOL isInherited, DWORD id)
{
    EXPECT_EQ(isInherited, FALSE);
    s_opened.push_back(std::to_string(id) + " " + std::to_string(access));
    return CreateEventW(nullptr, FALSE, FALSE, nullptr);
}

BOOL WINAPI Enumerate(DWORD* ids, DWORD size, DWORD* needed)
{
    const std::size_t count = std::min(s_ids.size(), size / sizeof(DWORD));
    std::copy_n(s_ids.begin(), count, ids);
    *needed = static_cast<DWORD>(count * sizeof(DWORD));
    return TRUE;
}

BOOL WINAPI ListModules(HANDLE, HMODULE* modules, DWORD size, DWORD* needed, DWORD filter)
{
    EXPECT_EQ(filter, 3U);
    const std::size_t count = std::min(s_moduleCount, size / sizeof(HMODULE));
    for (std::size_t index = 0; index < count; ++index)
        modules[index] = reinterpret_cast<HMODULE>(index + 1);
    *needed = static_cast<DWORD>(s_moduleCount * sizeof(HMODULE));
    return TRUE;
}

DWORD WINAPI NameModule(HANDLE, HMODULE module, LPWSTR buffer, DWORD size)
{
    EXPECT_EQ(module, reinterpret_cast<HMODULE>(1)) << "the executable is the first";
    EXPECT_EQ(size, 260U);
    const std::wstring name = L"snip.exe";
    name.copy(buffer, name.size());
    return static_cast<DWORD>(name.size());
}

/// Stands for a system with processes of one name.
class ProcessCallsTest : public testing::Test
{
protected:
    ProcessCallsTest()
    {
        s_ids.clear();
        s_opened.clear();
        s_moduleCount = 3;
        m_calls.Of<&::OpenProcess>() = &Open;
        m_calls.Of<&::K32EnumProcesses>() = &Enumerate;
        m_calls.Of<&::K32EnumProcessModulesEx>() = &ListModules;
        m_calls.Of<&::K32GetModuleBaseNameW>() = &NameModule;
    }

    static std::vector<std::uint64_t> Find(std::string_view name)
    {
        std::vector<std::uint64_t> ids;
        const std::uint32_t count = EnumerateProcesses(name, [&ids](Process& process) { ids.push_back(process.id); });
        EXPECT_EQ(count, ids.size());
        return ids;
    }

    Tests::ReplacedCalls m_calls;
    Tests::LogRecorder m_log;
};

TEST_F(ProcessCallsTest, Finds1024ProcessesAndNoMore)
{
    s_ids.resize(1024);
    std::iota(s_ids.begin(), s_ids.end(), 4U);
    EXPECT_THAT(Find(""), SizeIs(1024));
    EXPECT_THAT(Find("snip.exe"), SizeIs(1024));
    EXPECT_EQ(Find("snip.exe").back(), 1027U);
    s_ids.push_back(5000);
    EXPECT_THAT(Find("snip.exe"), SizeIs(1024));
    EXPECT_THAT(Find("other.exe"), IsEmpty());
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(ProcessCallsTest, TheIdZeroIsNoProcess)
{
    s_ids = {0, 4, 0, 8};
    EXPECT_THAT(Find(""), ElementsAre(4, 8));
    EXPECT_THAT(s_opened, IsEmpty());
    EXPECT_THAT(Find("snip.exe"), ElementsAre(4, 8));
    EXPECT_THAT(s_opened, ElementsAre("4 4112", "8 4112")) << "0x1010";
}

TEST_F(ProcessCallsTest, ProcessesThatAreNotListedAreLogged)
{
    m_calls.Of<&::K32EnumProcesses>() = [](DWORD*, DWORD, DWORD*) -> BOOL
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    };
    EXPECT_THAT(Find(""), IsEmpty());
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre(MatchesPattern("System Error: Failed to enumerate processes: .+ \\(5\\)")));
}

TEST_F(ProcessCallsTest, ProcessesThatMayNotBeOpenedAreLoggedOneByOneAndNotMatched)
{
    s_ids = {4, 8};
    m_calls.Of<&::OpenProcess>() = [](DWORD, BOOL, DWORD) -> HANDLE
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    };
    EXPECT_THAT(Find("snip.exe"), IsEmpty());
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre(MatchesPattern("System Error: Failed to get process '4' handle: .+ \\(5\\)"),
                            MatchesPattern("System Error: Failed to get process '8' handle: .+ \\(5\\)")));
}

TEST_F(ProcessCallsTest, AProcessWhoseModulesAreNotListedHasNoName)
{
    m_calls.Of<&::K32EnumProcessModulesEx>() = [](HANDLE, HMODULE*, DWORD, DWORD*, DWORD) -> BOOL
    {
        SetLastError(ERROR_PARTIAL_COPY);
        return FALSE;
    };
    std::string name = "before";
    EXPECT_EQ(GetName({4}, name), "before");
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre(MatchesPattern("System Error: Failed to get name of process '4': .+ \\(12B\\)")));
}

TEST_F(ProcessCallsTest, AListOfModulesThatFailsAtItsSecondStepGivesNoName)
{
    m_calls.Of<&::K32EnumProcessModulesEx>() = [](HANDLE, HMODULE* modules, DWORD, DWORD* needed, DWORD) -> BOOL
    {
        *needed = 8;
        SetLastError(ERROR_PARTIAL_COPY);
        return modules == nullptr ? TRUE : FALSE;
    };
    std::string name = "before";
    EXPECT_EQ(GetName({4}, name), "before");
    EXPECT_THAT(m_log.GetLines(), SizeIs(1));
}

TEST_F(ProcessCallsTest, AListOfModulesThatGrowsIsAskedForAgain)
{
    static int s_asked = 0;
    s_asked = 0;
    m_calls.Of<&::K32EnumProcessModulesEx>() = [](HANDLE process, HMODULE* modules, DWORD size, DWORD* needed,
                                                  DWORD filter) -> BOOL
    {
        s_moduleCount = ++s_asked < 4 ? 3U * static_cast<std::size_t>(s_asked) : s_moduleCount;
        return ListModules(process, modules, size, needed, filter);
    };
    std::string name;
    EXPECT_EQ(GetName({4}, name), "snip.exe");
    EXPECT_EQ(s_asked, 4) << "for the size, twice for a list that has become too short, and for the whole";
}

TEST_F(ProcessCallsTest, AProcessWithoutModulesOrAModuleWithoutANameHasNoName)
{
    std::string name = "before";
    s_moduleCount = 0;
    EXPECT_EQ(GetName({4}, name), "before");
    s_moduleCount = 1;
    m_calls.Of<&::K32GetModuleBaseNameW>() = [](HANDLE, HMODULE, LPWSTR, DWORD) -> DWORD
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    };
    EXPECT_EQ(GetName({8}, name), "before");
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre(MatchesPattern("System Error: Failed to get name of process '4': .+"),
                            MatchesPattern("System Error: Failed to get name of process '8': .+ \\(6\\)")));
}

TEST_F(ProcessCallsTest, AProcessThatWillNotEndIsLogged)
{
    m_calls.Of<&::TerminateProcess>() = [](HANDLE, UINT code) -> BOOL
    {
        EXPECT_EQ(code, 0U);
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    };
    Process process{4};
    Terminate(process);
    EXPECT_EQ(process.id, 0U);
    EXPECT_THAT(s_opened, ElementsAre("4 1"));
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre(MatchesPattern("System Error: Failed to terminate process '4': .+ \\(5\\)")));
}

TEST_F(ProcessCallsTest, AProcessThatEndsIsNoNews)
{
    m_calls.Of<&::TerminateProcess>() = [](HANDLE, UINT) -> BOOL { return TRUE; };
    Process process{4};
    Terminate(process);
    EXPECT_EQ(process.id, 0U);
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(ProcessCallsTest, TheOwnProcessExistsThoughItMayNotBeOpened)
{
    m_calls.Of<&::OpenProcess>() = [](DWORD access, BOOL, DWORD) -> HANDLE
    {
        EXPECT_EQ(access, 0x1000U);
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    };
    EXPECT_EQ(GetCurrentProcess().id, GetCurrentProcessId());
    m_calls.Of<&::OpenProcess>() = [](DWORD, BOOL, DWORD) -> HANDLE
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    };
    EXPECT_EQ(GetCurrentProcess().id, 0U);
}

} // namespace
} // namespace Orvik::System::Processes
