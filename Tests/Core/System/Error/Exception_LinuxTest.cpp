#include "Core/System/Error/Exception.h"
#include "Tests/Support/ForkedProcess.h"

#include <gtest/gtest.h>

namespace Orvik::System::Error
{
namespace
{

TEST(Exception, ReportMarksItAsHandledAndWritesIt)
{
    // In a process of its own: a report brings up the error handling, which changes the process for good.
    const Tests::ForkedResult result = Tests::RunForked(
        []
        {
            ExceptionWithDetails exception(SourceLocation("/x/Source/Core/a.cpp", 12, "Open"),
                                           ErrorDetails(LogFileStateError));
            exception.Report();
            return exception.IsHandled() ? 3 : 4;
        });
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.error, "Exception: Orvik::Exception\n"
                            "\tMessage: Internal state doesn't match file state.\n"
                            "\tCode:    0x0000001e01f70002\n"
                            "\n"
                            "Callstack:\n"
                            "\t[0]: /Core/a.cpp at 12: Open\n");
}

} // namespace
} // namespace Orvik::System::Error
