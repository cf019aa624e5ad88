#include "Core/System/Error/ErrorHandling.h"

#include "Core/System/Error/Exception.h"
#include "Core/System/Log/Log.h"
#include "Core/System/Runtime/Application.h"
#include "Core/System/Text/Files.h"
#include "Core/System/Text/Paths.h"
#include "Core/System/Text/Unicode.h"
#include "Core/System/Time/Timestamp.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <locale>
#include <system_error>
#include <utility>

namespace Orvik::System::Error
{
namespace
{

/// Whether the thread has reported why it ends, or tries to. A report that fails terminates a second time.
thread_local bool t_isTerminating = false;

void WriteCallstack(std::ostream& stream, const SourceLocation& location)
{
    stream << "\nCallstack:\n\t[0]: " << location.file << " at " << location.line << ": " << location.function << "\n";
}

} // namespace

ErrorHandling& ErrorHandling::GetInstance()
{
    // This may be constructed before the streams are, and has to be destroyed before them.
    static const std::ios_base::Init s_streams;
    static ErrorHandling s_instance;
    return s_instance;
}

ErrorHandling::ErrorHandling()
    : m_previousAssertionHandler(SetAssertionHandler(&OnAssertion)),
      m_previousTerminateHandler(std::set_terminate(&OnTerminate))
{
    if (std::get_terminate() != &OnTerminate)
        std::cerr << "Failed to register termination handler." << std::endl;
    m_messageStream.imbue(std::locale::classic());
    InstallSignalHandlersPlatform();
}

ErrorHandling::~ErrorHandling()
{
    RemoveSignalHandlersPlatform();
    std::set_terminate(m_previousTerminateHandler);
    SetAssertionHandler(m_previousAssertionHandler);
}

bool ErrorHandling::Initialize(Runtime::Application* application)
{
    Runtime::Application& owner = application != nullptr ? *application : Runtime::Application::GetInstance();
    const std::filesystem::path directory = Text::Join(owner.GetConfigCache().GetDataDirectory(), "Logs");
    if (!Text::Exists(directory) && !Text::CreatePrivateDirectory(directory))
    {
        m_reportDirectory.clear();
        return false;
    }
    m_reportDirectory = directory;
    m_applicationName = Text::ToUtf8(owner.GetName());
    ClearMessageStream();
    return true;
}

bool ErrorHandling::MakeReportPath(std::int64_t time, std::filesystem::path& path) const
{
    std::error_code ignored;
    const std::filesystem::path directory =
        m_reportDirectory.empty() ? std::filesystem::current_path(ignored) : m_reportDirectory;
    if (!std::filesystem::exists(directory, ignored))
        return false;
    // A second report in the same second replaces the first.
    const std::string prefix = m_applicationName.empty() ? "ERROR_" : m_applicationName + "_ERROR_";
    path = Text::Join(directory, Text::PathFromUtf8(prefix + Time::FormatLocalFileTime(time) + ".log"));
    return true;
}

/// An unwritable file is ignored: there is no other place left to report that.
void ErrorHandling::WriteReportFile(const std::filesystem::path& path,
                                    const std::function<void(std::ostream&)>& writeReport)
{
    std::ostringstream text;
    text.imbue(std::locale::classic()); // numbers as on standard error
    writeReport(text);
    if (!m_reportDirectory.empty())
    {
        // Made for the user alone. One of the same second is there already, and is replaced.
        bool isTaken = false;
        static_cast<void>(Text::OpenNewFilePlatform(path, isTaken));
        std::ofstream(path, std::ios::out | std::ios::trunc) << text.str();
        return;
    }
    // In a working directory that every user can write to, a link with the report's name may point to another file of
    // the user's. So only a file that this process has made is replaced.
    std::error_code ignored;
    if (path == m_wantedReportPath)
        std::filesystem::remove(m_reportPath, ignored);
    const Text::NewFile report = Text::OpenNewFile(path);
    if (report.file == nullptr)
        return;
    m_wantedReportPath = path;
    m_reportPath = report.path;
    (void)std::fputs(text.str().c_str(), report.file.get());
}

void ErrorHandling::OnAssertion(const AssertionInfo& info)
{
    GetInstance().ReportAssertion(info);
}

void ErrorHandling::ReportAssertion(const AssertionInfo& info)
{
    std::filesystem::path path;
    if (!MakeReportPath(std::time(nullptr), path))
        std::terminate();

    const auto writeReport = [&info](std::ostream& stream)
    {
        stream << "Assertion: " << info.condition << "\n\tMessage: " << info.message << "\n";
        WriteCallstack(stream, *info.location);
    };
    WriteReportFile(path, writeReport);
    writeReport(std::cerr);
    std::cerr << std::flush;
    if (m_logger != nullptr)
    {
        m_logger->Write<Log::StreamID::Default, Log::MessageTypeID::Critical>(
            "Condition: '", info.condition, "' in file '", info.location->file, "', line '", info.location->line,
            "', function '", info.location->function, "' with message: ", info.message);
    }
    m_terminating = true;
    t_isTerminating = true; // so that an exception that is being handled right now isn't reported as well
    std::terminate();
}

void ErrorHandling::ReportException(const Exception& exception)
{
    ErrorCode code;
    exception.GetErrorCode(code);
    exception.WriteMessage(m_messageStream);
    m_messageStream << std::flush;
    m_lastMessage = std::move(m_messageStream).str();
    std::filesystem::path path;
    if (!MakeReportPath(std::time(nullptr), path))
        std::terminate();

    const SourceLocation& location = exception.GetLocation();
    const char* const header = MakeHeader(exception.IsHandled());
    const auto writeReport = [&](std::ostream& stream)
    {
        const std::ios::fmtflags flags = stream.flags();
        const char fill = stream.fill();
        stream << header << exception.GetTypeName() << "\n\tMessage: " << m_lastMessage << "\n\tCode:    0x" << std::hex
               << std::nouppercase << std::noshowbase << std::right << std::setfill('0') << std::setw(16) << code.value;
        stream.flags(flags);
        stream.fill(fill);
        stream << "\n";
        WriteCallstack(stream, location);
    };
    writeReport(std::cerr);
    std::cerr << std::flush;
    WriteReportFile(path, writeReport);
    if (m_logger != nullptr)
    {
        m_logger->Write<Log::StreamID::Default, Log::MessageTypeID::Error>(
            "Exception: '", exception.GetTypeName(), "' in file '", location.file, "', line '", location.line,
            "', function '", location.function, "' with message: ", m_lastMessage);
    }
    ClearMessageStream();
}

void ErrorHandling::ReportStdException(const std::exception& exception, bool handled)
{
    std::filesystem::path path;
    if (!MakeReportPath(std::time(nullptr), path))
        std::terminate();

    const char* const header = MakeHeader(handled);
    const auto writeReport = [&](std::ostream& stream) {
        stream << header << "std::exception" << std::endl << "\tMessage: " << exception.what() << std::endl;
    };
    writeReport(std::cerr);
    WriteReportFile(path, writeReport);
    if (m_logger != nullptr)
    {
        m_logger->Write<Log::StreamID::Default, Log::MessageTypeID::Error>("Exception: 'std::exception' with message: ",
                                                                           exception.what());
    }
    ClearMessageStream();
}

const char* ErrorHandling::MakeHeader(bool handled)
{
    if (handled)
        return "Exception: ";
    m_unhandledException = true;
    return "Unhandled Exception: ";
}

void ErrorHandling::ClearMessageStream()
{
    m_messageStream.str({});
    m_messageStream.clear();
}

void ErrorHandling::OnTerminate()
{
    if (!std::exchange(t_isTerminating, true))
        GetInstance().ReportCurrentException();
    std::abort();
}

/// An exception of any other type is thrown on.
void ErrorHandling::ReportCurrentException()
{
    if (!std::current_exception())
        return;
    try
    {
        throw;
    }
    catch (const std::exception& exception)
    {
        ReportStdException(exception, false);
    }
    catch (const Exception& exception)
    {
        ReportException(exception);
    }
}

} // namespace Orvik::System::Error
