#include "Core/System/Error/Exception.h"

#include <exception>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <type_traits>

namespace Orvik::System::Error
{
namespace
{

std::string GetMessage(const Exception& exception)
{
    std::ostringstream stream;
    exception.WriteMessage(stream);
    return stream.str();
}

std::uint64_t GetCode(const Exception& exception)
{
    ErrorCode code{0x5555};
    const ErrorCode& result = exception.GetErrorCode(code);
    EXPECT_EQ(&result, &code);
    return code.value;
}

TEST(Exception, PlainOneHasNoCodeAndNoMessage)
{
    const Exception exception(SourceLocation("/x/Source/Core/a.cpp", 7, "Open"));
    EXPECT_EQ(GetCode(exception), 0U);
    EXPECT_STREQ(exception.GetTypeName(), "Orvik::Exception");
    EXPECT_EQ(GetMessage(exception), "No message provided.");
    EXPECT_STREQ(exception.GetLocation().file, "/Core/a.cpp");
    EXPECT_EQ(exception.GetLocation().line, 7U);
    EXPECT_STREQ(exception.GetLocation().function, "Open");
    EXPECT_FALSE(exception.IsHandled());
}

template <typename Error_Type>
void ExpectOrdinaryError(Error_Type& error, std::uint64_t code, const std::string& text)
{
    const ExceptionWithDetails exception(ORVIK_HERE, ErrorDetails(error));
    static_assert(
        std::is_same_v<decltype(exception), const ExceptionWithDetails<ErrorDetails<const std::decay_t<Error_Type>>>>);
    EXPECT_EQ(GetCode(exception), code);
    EXPECT_STREQ(exception.GetTypeName(), "Orvik::Exception");
    EXPECT_EQ(GetMessage(exception), text);
}

TEST(Exception, OrdinaryErrorsHaveTheirCodeAndDefaultText)
{
    ExpectOrdinaryError(ProgramStartupError, 0x0000000100020002, "Failure during program startup.");
    ExpectOrdinaryError(ServiceStartupError, 0x0000000200020002, "Failure during service startup.");
    ExpectOrdinaryError(LogNotInitializedError, 0x0000000101F50002, "Log not initialized.");
    ExpectOrdinaryError(LogFileStatusError, 0x0000001401F60002, "Log file has invalid status.");
    ExpectOrdinaryError(LogFileStateError, 0x0000001E01F70002, "Internal state doesn't match file state.");
    ExpectOrdinaryError(DpiConfigurationError, 0x0000000103C40002, "Setup of DPI configuration failed.");
}

TEST(Exception, SystemErrorsHaveTheirCodeAndDefaultText)
{
    EXPECT_EQ(SystemCreationError.code.value, 0x0000000200640002U);
    EXPECT_STREQ(SystemCreationError.text, "Failure during system creation.");
    EXPECT_EQ(SystemInitializationError.code.value, 0x0000000300640002U);
    EXPECT_STREQ(SystemInitializationError.text, "Failure during system initialization.");
}

TEST(Exception, TextOfTheThrowSiteReplacesTheDefault)
{
    const ExceptionWithDetails exception(ORVIK_HERE, ErrorDetails(ProgramStartupError, "Failed to begin."));
    EXPECT_EQ(GetMessage(exception), "Failed to begin.");
    EXPECT_EQ(GetCode(exception), 0x0000000100020002U);
}

TEST(Exception, DetailsWithoutATextHaveNoMessage)
{
    const ExceptionWithDetails exception(ORVIK_HERE, ErrorDetails(ProgramStartupError, nullptr));
    EXPECT_EQ(GetMessage(exception), "No message provided.");
    EXPECT_EQ(GetCode(exception), 0x0000000100020002U);
}

TEST(Exception, SystemCreationFailureNamesTheSystem)
{
    const SystemCreationException exception(
        ORVIK_HERE, SystemCreationErrorDetails("LogSystem", GUID{0x4392DED52813410E, 0xA3BB393A4153F1F9}));
    EXPECT_EQ(GetCode(exception), 0x0000000200640002U);
    EXPECT_STREQ(exception.GetTypeName(), "Orvik::SystemCreationException");
    EXPECT_EQ(GetMessage(exception), "Creation of system failed.\n"
                                     "\t\t System name: LogSystem\n"
                                     "\t\t GUID: {4392DED5-2813-410E-A3BB-393A4153F1F9}\n");
}

TEST(Exception, SystemInitializationFailureNamesTheSystem)
{
    const SystemInitializationException exception(
        ORVIK_HERE, SystemInitializationErrorDetails("DisplayCache", GUID{0x2741C9268DCB47A2, 0x9DE7F385B2457F35}));
    EXPECT_EQ(GetCode(exception), 0x0000000300640002U);
    EXPECT_STREQ(exception.GetTypeName(), "Orvik::SystemInitializationException");
    EXPECT_EQ(GetMessage(exception), "Initialization of system failed.\n"
                                     "\t\t System name: DisplayCache\n"
                                     "\t\t GUID: {2741C926-8DCB-47A2-9DE7-F385B2457F35}\n");
}

TEST(Exception, SystemFailureWithoutNameAndGuidIsOneLine)
{
    const SystemCreationException creation(ORVIK_HERE, SystemCreationErrorDetails(nullptr, GUID()));
    EXPECT_EQ(GetMessage(creation), "Creation of system failed.\n");
    const SystemInitializationException initialization(ORVIK_HERE, SystemInitializationErrorDetails(nullptr, GUID()));
    EXPECT_EQ(GetMessage(initialization), "Initialization of system failed.\n");
}

TEST(Exception, OneHalfOfAGuidIsEnoughForItsLine)
{
    const SystemCreationException first(ORVIK_HERE, SystemCreationErrorDetails(nullptr, GUID{1, 0}));
    EXPECT_EQ(GetMessage(first), "Creation of system failed.\n\t\t GUID: {00000000-0000-0001-0000-000000000000}\n");
    const SystemCreationException second(ORVIK_HERE, SystemCreationErrorDetails(nullptr, GUID{0, 1}));
    EXPECT_EQ(GetMessage(second), "Creation of system failed.\n\t\t GUID: {00000000-0000-0000-0000-000000000001}\n");
}

TEST(Exception, EmptyNameHasItsLine)
{
    const SystemCreationException exception(ORVIK_HERE, SystemCreationErrorDetails("", GUID()));
    EXPECT_EQ(GetMessage(exception), "Creation of system failed.\n\t\t System name: \n");
}

TEST(Exception, IsApartFromTheStandardFamily)
{
    static_assert(!std::is_base_of_v<std::exception, Exception>);
    static_assert(!std::is_base_of_v<std::exception, SystemCreationException>);
    static_assert(std::is_base_of_v<Exception, SystemCreationException>);
    EXPECT_THROW(throw SystemCreationException(ORVIK_HERE, SystemCreationErrorDetails(nullptr, GUID())), Exception);
}

TEST(Exception, CopyKeepsDetailsAndPlace)
{
    const SourceLocation location("/x/Source/b.cpp", 9, "Initialize");
    const ExceptionWithDetails original(location, ErrorDetails(LogFileStateError));
    const ExceptionWithDetails copy = original;
    EXPECT_EQ(GetMessage(copy), "Internal state doesn't match file state.");
    EXPECT_EQ(copy.GetLocation().line, 9U);
}

} // namespace
} // namespace Orvik::System::Error
