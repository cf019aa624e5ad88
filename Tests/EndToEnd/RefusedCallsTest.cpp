// Each call of the system that a run on X11 makes, refused for the whole run: one table says which, how, and what
// becomes of the run. It never hangs, never faults, and leaves the desktop free.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <sys/syscall.h>

namespace Orvik::Tests
{
namespace
{

enum class Outcome
{
    Snip,      ///< picture and JSON file, as if nothing had been
    NoJson,    ///< the picture alone; the run goes on and ends with success
    NoDisplay, ///< the answer that the systems can't be initialised
    Report,    ///< an unhandled exception, with a report
};

struct RefusedCall
{
    const char* name;
    long number;
    int error;
    Outcome outcome;
};

void PrintTo(const RefusedCall& call, std::ostream* stream)
{
    *stream << call.name << " with " << strerrorname_np(call.error);
}

// What is not in it: calls without which no program is loaded, and those that can't fail.
constexpr RefusedCall s_calls[] = {
    // Memory that is shared with the server: the capture comes through the connection, the overlay from own memory.
    {"memfd_create", SYS_memfd_create, ENOSYS, Outcome::Snip},
    {"memfd_create", SYS_memfd_create, EMFILE, Outcome::Snip},
    {"ftruncate", SYS_ftruncate, ENOSPC, Outcome::Snip},
    {"madvise", SYS_madvise, EINVAL, Outcome::Snip},
    // Processes: other runs, the program's own path and name.
    {"readlinkat", SYS_readlinkat, EACCES, Outcome::Snip},
    {"pidfd_open", SYS_pidfd_open, ENOSYS, Outcome::Snip},
    {"pidfd_send_signal", SYS_pidfd_send_signal, EPERM, Outcome::Snip},
    {"prctl", SYS_prctl, EPERM, Outcome::Snip},
    {"sigaltstack", SYS_sigaltstack, ENOMEM, Outcome::Snip},
    {"getrandom", SYS_getrandom, ENOSYS, Outcome::Snip},
    {"eventfd2", SYS_eventfd2, EMFILE, Outcome::Snip},
    {"sched_getaffinity", SYS_sched_getaffinity, EPERM, Outcome::Snip},
    // Files and directories.
    {"rename", SYS_rename, EROFS, Outcome::NoJson},
    {"unlink", SYS_unlink, EROFS, Outcome::Snip},
    {"mkdir", SYS_mkdir, EACCES, Outcome::Report},
    {"getdents64", SYS_getdents64, EACCES, Outcome::Snip}, // without a log file, which the error stream says
    // The display.
    {"socket", SYS_socket, EMFILE, Outcome::NoDisplay},
    {"connect", SYS_connect, ECONNREFUSED, Outcome::NoDisplay},
};

class RefusedCalls : public DesktopTest, public testing::WithParamInterface<RefusedCall>
{
protected:
    RefusedCalls() : DesktopTest(320, 240) {}

    /// A refusal can't be taken back, so a program of its own refuses, and becomes this one.
    [[nodiscard]] ChildProcess StartWithout(const RefusedCall& call, const Arguments& arguments) const
    {
        ChildOptions options = m_installation.MakeStart(arguments);
        options.arguments.insert(options.arguments.begin(),
                                 {std::to_string(call.number), std::to_string(call.error), options.program.string()});
        options.program = ORVIK_WITHOUT_CALL;
        return StartWith(options);
    }

    [[nodiscard]] std::size_t Count(const std::string& extension) const
    {
        if (!std::filesystem::exists(GetOutput()))
            return 0;
        const std::vector<std::filesystem::path> files = ListFiles(GetOutput());
        return static_cast<std::size_t>(std::count_if(files.begin(), files.end(),
                                                      [&](const std::filesystem::path& file)
                                                      { return file.extension() == extension; }));
    }

    void Snip(const ChildProcess& process)
    {
        // A run that shows nothing ends by itself.
        if (process.WaitUntil([this] { return m_overlay->GetState() == OverlayWatcher::State::Visible; }))
            Drag({10, 20}, {70, 60});
    }

    void ExpectOutcome(const ChildResult& result, Outcome outcome)
    {
        EXPECT_FALSE(result.isTimeout);
        const bool hasImage = outcome == Outcome::Snip || outcome == Outcome::NoJson;
        EXPECT_EQ(Count(".png"), hasImage ? 1U : 0U);
        EXPECT_EQ(Count(".json"), outcome == Outcome::Snip ? 1U : 0U);
        EXPECT_EQ(Count(".part"), 0U);
        if (outcome == Outcome::Report)
        {
            EXPECT_EQ(result.signal, SIGABRT);
            EXPECT_NE(result.standardError.find("Unhandled Exception"), std::string::npos) << result.standardError;
        }
        else if (outcome == Outcome::NoDisplay)
        {
            ExpectAnswer(result, 253, Answer::InitializeSystemsFailed);
        }
        else
        {
            ExpectAnswer(result, 0, Answer::Success);
        }
    }
};

TEST_P(RefusedCalls, HaveTheirOutcome)
{
    m_environment["ORVIK_RENDERER"] = "raster";
    ChildProcess process = StartWithout(GetParam(), {"-s", "true", "-o", GetOutput().string()});
    Snip(process);
    const ChildResult result = process.Wait(s_endLimit);
    ExpectOutcome(result, GetParam().outcome);
    EXPECT_TRUE(m_overlay->WaitFor(OverlayWatcher::State::Missing));
    EXPECT_TRUE(m_input->CanGrab());
    if (HasFailure())
        std::cout << result.standardOutput << result.standardError << "exit " << result.exitCode << ", signal "
                  << result.signal << '\n';
}

INSTANTIATE_TEST_SUITE_P(Calls, RefusedCalls, testing::ValuesIn(s_calls),
                         [](const testing::TestParamInfo<RefusedCall>& row)
                         { return std::string(row.param.name) + "_" + strerrorname_np(row.param.error); });

} // namespace
} // namespace Orvik::Tests
