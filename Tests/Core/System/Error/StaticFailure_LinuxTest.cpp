#include "Tests/Core/System/Error/StaticFailure.h"

#include "Tests/Core/System/Error/ReportText.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/OwnProgram.h"

#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <unistd.h>

namespace Orvik::System::Error
{
namespace
{

using Tests::ForkedProcess;
using Tests::ForkedResult;

// In the order in which they stand here, the second would be made too late.
const Tests::OrdinaryObject s_ordinaryObject;
[[gnu::init_priority(101)]] const Tests::FirstObject s_firstObject;

constexpr const char* s_report = "Assertion: 1 == 2\n\tMessage: One is two.\n\nCallstack:\n"
                                 "\t[0]: ./Tests/Core/System/Error/StaticFailure.h at 12: FailStatically\n";

/// How this program ends in a role, and its reports.
struct Outcome
{
    ForkedResult result;
    std::map<std::string, std::string> reports; ///< normalised names and texts
};

Outcome Play(const char* role)
{
    ForkedProcess process(
        [role]
        {
            setenv(Tests::s_roleVariable, role, 1);
            const std::filesystem::path program = Tests::GetOwnProgram();
            return execl(program.c_str(), program.c_str(), nullptr);
        });
    Outcome outcome;
    outcome.result = process.Wait();
    for (const auto& entry : std::filesystem::directory_iterator(process.GetWorkingDirectory()))
    {
        std::ifstream stream(entry.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(stream), {}};
        outcome.reports.emplace(Tests::Normalize(entry.path().filename().string()), Tests::Normalize(text));
    }
    return outcome;
}

const std::map<std::string, std::string> s_reports = {{"ERROR_<time>.log", s_report}};

TEST(StaticFailure, InAnOrdinaryObjectIsReported)
{
    const Outcome outcome = Play(Tests::s_ordinaryRole);
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_EQ(Tests::Normalize(outcome.result.error), s_report);
    EXPECT_EQ(outcome.reports, s_reports);
}

TEST(StaticFailure, AheadOfTheStandardStreamsIsReported)
{
    const Outcome outcome = Play(Tests::s_firstRole);
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_EQ(Tests::Normalize(outcome.result.error), s_report);
    EXPECT_EQ(outcome.reports, s_reports);
}

TEST(StaticFailure, WithoutAnErrorHandlingGoesToTheErrorStream)
{
    const Outcome outcome = Play(Tests::s_unhandledRole);
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_EQ(Tests::Normalize(outcome.result.error), s_report);
    EXPECT_TRUE(outcome.reports.empty());
}

} // namespace
} // namespace Orvik::System::Error
