#include "Core/System/Processes/Process.h"

#include "Systems/Windows/WindowsHandle.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/OwnProgram.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Texts.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Orvik::System::Processes
{
namespace
{

constexpr const char* s_roleVariable = "ORVIK_TEST_ROLE";

/// A copy of this program sleeps instead of testing.
class Sleeper final : public testing::Environment
{
public:
    void SetUp() override
    {
        if (std::getenv(s_roleVariable) == nullptr)
            return;
        Sleep(60'000);
        std::_Exit(1);
    }
};
testing::Environment* const s_sleeper = testing::AddGlobalTestEnvironment(new Sleeper);

/// Runs under a name of its own until it is ended.
class OtherProcess
{
public:
    OtherProcess(const std::filesystem::path& directory, const std::wstring& name)
    {
        const std::filesystem::path program = directory / name;
        std::filesystem::copy_file(Tests::GetOwnProgram(), program);
        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process = {};
        _putenv_s(s_roleVariable, "sleep");
        EXPECT_TRUE(
            CreateProcessW(program.c_str(), nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
        _putenv_s(s_roleVariable, "");
        m_handle.reset(process.hProcess);
        CloseHandle(process.hThread);
        m_id = process.dwProcessId;
        WaitForInputIdle(m_handle.get(), 100);
        Sleep(300); // until its modules are listed
    }
    ~OtherProcess()
    {
        TerminateProcess(m_handle.get(), 1);
        WaitForSingleObject(m_handle.get(), 10'000);
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    [[nodiscard]] std::uint64_t GetId() const { return m_id; }
    /// The exit code once it has ended; -1 if it doesn't.
    [[nodiscard]] int WaitForEnd() const
    {
        DWORD code = 0;
        if (WaitForSingleObject(m_handle.get(), 10'000) != WAIT_OBJECT_0)
            return -1;
        GetExitCodeProcess(m_handle.get(), &code);
        return static_cast<int>(code);
    }

private:
    Systems::WindowsHandle m_handle;
    std::uint64_t m_id = 0;
};

class ProcessWindows : public testing::Test
{
protected:
    static std::vector<std::uint64_t> Find(std::string_view name)
    {
        std::vector<std::uint64_t> ids;
        const std::uint32_t count = EnumerateProcesses(name, [&ids](Process& process) { ids.push_back(process.id); });
        EXPECT_EQ(count, ids.size());
        return ids;
    }

    Tests::TemporaryDirectory m_directory;
};

TEST_F(ProcessWindows, TheOwnOneHasTheProgramsName)
{
    const Process own = GetCurrentProcess();
    EXPECT_EQ(own.id, GetCurrentProcessId());
    std::string name = "before";
    EXPECT_EQ(&GetName(own, name), &name);
    EXPECT_EQ(name, Tests::GetOwnProgram().filename().string());
}

TEST_F(ProcessWindows, NamesBeyondAsciiAreUtf8)
{
    const OtherProcess other(m_directory.GetPath(), L"sn\x00EFp-\x20AC.exe");
    std::string name;
    EXPECT_EQ(GetName({other.GetId()}, name), "sn\xC3\xAFp-\xE2\x82\xAC.exe");
    EXPECT_EQ(Find("sn\xC3\xAFp-\xE2\x82\xAC.exe"), std::vector{other.GetId()});
}

TEST_F(ProcessWindows, ANameIsMatchedWholeAndByCase)
{
    const OtherProcess other(m_directory.GetPath(), L"snip-exact.exe");
    EXPECT_EQ(Find("snip-exact.exe"), std::vector{other.GetId()});
    EXPECT_TRUE(Find("Snip-exact.exe").empty());
    EXPECT_TRUE(Find("snip-exact").empty());
    EXPECT_THAT(Find(""), testing::Contains(other.GetId()));
}

TEST_F(ProcessWindows, EndsAProcessWithCodeZero)
{
    const OtherProcess other(m_directory.GetPath(), L"snip-ended.exe");
    Process process{other.GetId()};
    Terminate(process);
    EXPECT_EQ(process.id, 0U);
    EXPECT_EQ(other.WaitForEnd(), 0);
}

TEST_F(ProcessWindows, AProcessThatIsNotThereIsLogged)
{
    const Tests::LogRecorder recorder;
    std::string name = "before";
    EXPECT_EQ(GetName({0x7FFFFFF0}, name), "before");
    Process process{0x100000004};
    Terminate(process);
    EXPECT_EQ(process.id, 0U);
    EXPECT_THAT(recorder.GetLines(),
                testing::ElementsAre(
                    Tests::MatchesPattern("System Error: Failed to get process '2147483632' handle: .* \\(57\\)"),
                    Tests::MatchesPattern("System Error: Failed to get process '4294967300' handle: .* \\(57\\)")));
}

} // namespace
} // namespace Orvik::System::Processes
