#include "Core/System/Processes/OtherRuns.h"

#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/OwnProgram.h"
#include "Tests/Support/ReplacedCalls_Windows.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <psapi.h>
#include <string>
#include <vector>

namespace Orvik::System::Processes
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

/// What the system reports of a process.
struct Known
{
    DWORD startTime = 0;
    std::wstring name = L"snip.exe"; ///< empty if it isn't known
    DWORD session = 1;
    DWORD owner = 7;
    DWORD exitCode = STILL_ACTIVE;
};

std::map<DWORD, Known> s_processes;
std::map<HANDLE, DWORD> s_handles; ///< of processes and of their owners' records
std::vector<DWORD> s_ended;

/// A handle that can be closed.
HANDLE MakeHandle(DWORD id)
{
    HANDLE const handle = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    s_handles[handle] = id;
    return handle;
}

Known& GetKnown(HANDLE handle)
{
    return s_processes.at(handle == ::GetCurrentProcess() ? GetCurrentProcessId() : s_handles.at(handle));
}

HANDLE WINAPI Open(DWORD, BOOL, DWORD id)
{
    return MakeHandle(id);
}

BOOL WINAPI Enumerate(DWORD* ids, DWORD, DWORD* needed)
{
    for (const auto& [id, known] : s_processes)
        *ids++ = id;
    *needed = static_cast<DWORD>(s_processes.size() * sizeof(DWORD));
    return TRUE;
}

BOOL WINAPI ListModules(HANDLE, HMODULE* modules, DWORD, DWORD* needed, DWORD)
{
    if (modules != nullptr)
        *modules = reinterpret_cast<HMODULE>(1);
    *needed = sizeof(HMODULE);
    return TRUE;
}

DWORD WINAPI NameModule(HANDLE process, HMODULE, LPWSTR buffer, DWORD)
{
    const std::wstring& name = GetKnown(process).name;
    name.copy(buffer, name.size());
    return static_cast<DWORD>(name.size());
}

BOOL WINAPI GetTimes(HANDLE process, LPFILETIME creation, LPFILETIME, LPFILETIME, LPFILETIME)
{
    *creation = {GetKnown(process).startTime, 5};
    return TRUE;
}

BOOL WINAPI GetExitCode(HANDLE process, LPDWORD code)
{
    *code = GetKnown(process).exitCode;
    return TRUE;
}

BOOL WINAPI GetSession(DWORD id, DWORD* session)
{
    *session = s_processes.at(id).session;
    return TRUE;
}

BOOL WINAPI OpenToken(HANDLE process, DWORD access, PHANDLE token)
{
    EXPECT_EQ(access, static_cast<DWORD>(TOKEN_QUERY));
    if (GetKnown(process).owner == 0)
        return FALSE;
    *token = MakeHandle(process == ::GetCurrentProcess() ? GetCurrentProcessId() : s_handles.at(process));
    return TRUE;
}

BOOL WINAPI GetInformation(HANDLE token, TOKEN_INFORMATION_CLASS kind, LPVOID buffer, DWORD size, PDWORD needed)
{
    struct Owner
    {
        TOKEN_USER user;
        SID sid;
    };
    EXPECT_EQ(kind, TokenUser);
    *needed = sizeof(Owner);
    if (size < sizeof(Owner))
        return FALSE;
    auto* const owner = static_cast<Owner*>(buffer);
    *owner = {};
    owner->sid.Revision = SID_REVISION;
    owner->sid.SubAuthorityCount = 1;
    owner->sid.SubAuthority[0] = GetKnown(token).owner;
    owner->user.User.Sid = &owner->sid;
    return TRUE;
}

BOOL WINAPI End(HANDLE process, UINT)
{
    s_ended.push_back(s_handles.at(process));
    return TRUE;
}

/// Stands for a system whose processes the test makes up. This one was started at 100 and has the name of the others.
class OtherRunsOfASystem : public testing::Test
{
protected:
    OtherRunsOfASystem()
    {
        s_processes = {{GetCurrentProcessId(), {100}}};
        s_handles.clear();
        s_ended.clear();
        m_calls.Of<&::OpenProcess>() = &Open;
        m_calls.Of<&::TerminateProcess>() = &End;
        m_calls.Of<&::GetProcessTimes>() = &GetTimes;
        m_calls.Of<&::GetExitCodeProcess>() = &GetExitCode;
        m_calls.Of<&::ProcessIdToSessionId>() = &GetSession;
        m_calls.Of<&::OpenProcessToken>() = &OpenToken;
        m_calls.Of<&::GetTokenInformation>() = &GetInformation;
        m_calls.Of<&::K32EnumProcesses>() = &Enumerate;
        m_calls.Of<&::K32EnumProcessModulesEx>() = &ListModules;
        m_calls.Of<&::K32GetModuleBaseNameW>() = &NameModule;
    }

    static bool EndThem()
    {
        return EndOlderRuns([] { return false; });
    }

    // Beyond all that a process here has as its number.
    static constexpr DWORD s_high = 0xF0000000;

    Tests::ReplacedCalls m_calls;
    Tests::LogRecorder m_log;
};

TEST_F(OtherRunsOfASystem, OlderOnesAreEndedWhateverTheirNumber)
{
    s_processes[1] = {99};
    s_processes[s_high] = {5};
    s_processes[2] = {5, L"other.exe"};
    EXPECT_TRUE(EndThem());
    EXPECT_THAT(s_ended, ElementsAre(1, s_high));
}

TEST_F(OtherRunsOfASystem, ARunThatHasANewerOneGivesUpAndEndsNone)
{
    s_processes[1] = {101};
    s_processes[2] = {5};
    EXPECT_FALSE(EndThem());
    EXPECT_THAT(s_ended, IsEmpty());
}

TEST_F(OtherRunsOfASystem, OfTwoOfTheSameMomentTheNumberDecides)
{
    s_processes[1] = {100};
    EXPECT_TRUE(EndThem());
    EXPECT_THAT(s_ended, ElementsAre(1));
    s_processes[s_high] = {100};
    EXPECT_FALSE(EndThem());
    EXPECT_THAT(s_ended, ElementsAre(1));
}

TEST_F(OtherRunsOfASystem, ThoseOfOthersAndThoseThatHaveEndedDoNotCount)
{
    s_processes[1] = {5, L"snip.exe", 2};
    s_processes[2] = {5, L"snip.exe", 1, 8};
    s_processes[3] = {5, L"snip.exe", 1, 0};
    s_processes[4] = {200, L"snip.exe", 2, 8};
    s_processes[5] = {200, L"snip.exe", 1, 7, 0};
    EXPECT_TRUE(EndThem());
    EXPECT_THAT(s_ended, IsEmpty());
}

TEST_F(OtherRunsOfASystem, WithoutAnOwnerOfItsOwnItEndsNone)
{
    s_processes[GetCurrentProcessId()].owner = 0;
    s_processes[1] = {5, L"snip.exe", 1, 0};
    EXPECT_TRUE(EndThem());
    EXPECT_THAT(s_ended, IsEmpty());
}

TEST_F(OtherRunsOfASystem, AProcessWithoutANameIsNotEndedUnderThatOfTheOneBefore)
{
    s_processes[1] = {5};
    s_processes[2] = {6, L""};
    EXPECT_TRUE(EndThem());
    EXPECT_THAT(s_ended, ElementsAre(1));
}

TEST_F(OtherRunsOfASystem, ANumberThatAnotherProcessHasByNowIsNotEnded)
{
    s_processes[1] = {5};
    static int s_asked = 0;
    s_asked = 0;
    m_calls.Of<&::GetProcessTimes>() = [](HANDLE process, LPFILETIME creation, LPFILETIME, LPFILETIME,
                                          LPFILETIME) -> BOOL
    {
        *creation = {GetKnown(process).startTime, 5};
        if (s_handles[process] == 1 && s_asked++ > 0)
            creation->dwLowDateTime = 6;
        return TRUE;
    };
    EXPECT_TRUE(EndThem());
    EXPECT_EQ(s_asked, 2);
    EXPECT_THAT(s_ended, IsEmpty());
    EXPECT_THAT(m_log.GetLines(), ElementsAre(testing::HasSubstr("System Error: Failed to get process '1' handle: ")));
}

// With the system's own answers: copies of this program, which don't test.

constexpr const char* s_roleVariable = "ORVIK_TEST_RUN_ROLE";
constexpr int s_goesOn = 2;
constexpr int s_givesUp = 3;

class RunRole final : public testing::Environment
{
public:
    void SetUp() override
    {
        if (std::getenv(s_roleVariable) == nullptr)
            return;
        HANDLE const go = OpenEventW(SYNCHRONIZE, FALSE, L"OrvikTestRunsMayGo");
        WaitForSingleObject(go, 60'000);
        std::_Exit(EndOlderRuns([] { return false; }) ? s_goesOn : s_givesUp);
    }
};
testing::Environment* const s_runRole = testing::AddGlobalTestEnvironment(new RunRole);

TEST(OtherRunsOfWindows, TheNewestIsLeft)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path program = directory.GetPath() / "snip-newest.exe";
    std::filesystem::copy_file(Tests::GetOwnProgram(), program);
    _putenv_s(s_roleVariable, "run");
    HANDLE const go = CreateEventW(nullptr, TRUE, FALSE, L"OrvikTestRunsMayGo");
    std::vector<HANDLE> runs;
    for (int count = 0; count < 3; ++count)
    {
        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process = {};
        ASSERT_TRUE(
            CreateProcessW(program.c_str(), nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
        CloseHandle(process.hThread);
        runs.push_back(process.hProcess);
        Sleep(300);
    }
    _putenv_s(s_roleVariable, "");
    SetEvent(go);
    std::vector<DWORD> codes;
    for (HANDLE const run : runs)
    {
        DWORD code = 0;
        EXPECT_EQ(WaitForSingleObject(run, 20'000), WAIT_OBJECT_0);
        GetExitCodeProcess(run, &code);
        codes.push_back(code);
        CloseHandle(run);
    }
    CloseHandle(go);
    // The older ones give up by themselves, or are ended with 0 before they come to that.
    EXPECT_THAT(codes, ElementsAre(testing::AnyOf(s_givesUp, 0), testing::AnyOf(s_givesUp, 0), s_goesOn));
}

} // namespace
} // namespace Orvik::System::Processes
