#include "Application/Application.h"

#include "Application/Options.h"
#include "Application/ReturnCodes.h"
#include "Application/SnipBenchConfig.h"
#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Error/Exception.h"
#include "Core/System/Log/FileLogSink.h"
#include "Core/System/Log/Log.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Core/System/Text/Paths.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Core/System/Time/Trace.h"

#include <atomic>
#include <cstdlib>
#include <iostream>

namespace Orvik::SnipBench
{
namespace
{

namespace Log = System::Log;
namespace Text = System::Text;
using System::Runtime::CommandLine;

/// The kind of permission that the option asks for. No desktop here reads it.
constexpr std::uint16_t s_capturePermission = 9;
constexpr std::int64_t s_permissionDenialPause = 1'000'000'000; // nanoseconds

constexpr std::uint64_t Id(Option option)
{
    return static_cast<std::uint64_t>(option);
}

void PrintLine(const std::string& text)
{
    std::cout << text << std::endl;
}

/// A picture that the tool can show has pixels, and blue, green and red in each.
bool IsShowable(const System::Multimedia::Bitmap& bitmap)
{
    return bitmap.GetSize() > 0 && (bitmap.GetBitsPerPixel() == 24 || bitmap.GetBitsPerPixel() == 32);
}

} // namespace

Application::Application() : System::Runtime::Application(L"SnipBench")
{
    System::Error::ErrorHandling::GetInstance().SetApplication(this);
}

Application::~Application()
{
    System::Error::ErrorHandling::GetInstance().SetApplication(nullptr);
}

void Application::Main(const System::Runtime::ApplicationParameters& parameters)
{
    RegisterReturnCodes(ReturnCodeRegistry::GetInstance());
    const std::string_view name = RunSteps(parameters);
    if (!name.empty())
        SetReturnCode(name);
}

std::string_view Application::RunSteps(const System::Runtime::ApplicationParameters& parameters)
{
    if (!m_running) // asked to end before it began, by the user or because of a newer run
        return ReturnCodeName::Success;
    if (parameters.commandLine == nullptr)
        return ReturnCodeName::WrongParameters;
    CommandLine& commandLine = *parameters.commandLine;
    System::Time::TraceScope options("options");
    DeclareOptions(commandLine);
    if (commandLine.Parse() != System::Runtime::ParseResult::Success)
        return ReturnCodeName::WrongParameters;
    if (commandLine.HasOption(Id(Option::Help)))
    {
        std::string usage;
        GetUsage(usage);
        PrintLine(usage);
        return {};
    }
    if (commandLine.HasOption(Id(Option::ShowReturnCodes)))
    {
        std::string table;
        if (ReturnCodeRegistry::GetInstance().WriteAll(0, table))
            PrintLine(table);
        return {};
    }
    if (commandLine.HasOption(Id(Option::Permission)) && !RequestPermission(s_capturePermission))
    {
        System::Time::Sleep(s_permissionDenialPause);
        return {};
    }
    if (!commandLine.HasRequiredOptions())
        return ReturnCodeName::WrongParameters;
    LoadConfiguration(commandLine);
    ReadOptions(commandLine);
    options.End();

    Graphics::Tools::SnipBench::Parameters toolParameters;
    toolParameters.cropToSelection = !m_annotate;
    toolParameters.switches = MakeSwitches();
    if (!m_inputFile.empty())
    {
        const System::Time::TraceScope step("picture from a file");
        System::Multimedia::Bitmap& bitmap = toolParameters.bitmap;
        if (!bitmap.Load(Text::PathToUtf8(m_inputFile)) || !IsShowable(bitmap))
            return ReturnCodeName::LoadFileFailed;
    }
    try
    {
        InitializeSystems();
    }
    catch (const System::Error::Exception&)
    {
        return ReturnCodeName::InitializeSystemsFailed;
    }
    return RunOnPicture(std::move(toolParameters));
}

std::string_view Application::RunOnPicture(Graphics::Tools::SnipBench::Parameters parameters)
{
    WarnOfIgnoredConfiguration();
    WarnOfLostTrace();
    if (m_inputFile.empty() && !CanCapture())
        return ReturnCodeName::InitializeSystemsFailed;
    PrepareOutputDirectory();
    if (m_settings->m_region)
        return RunRegion(std::move(parameters.bitmap));
    return RunOverlay(std::move(parameters));
}

void Application::LoadConfiguration(const CommandLine& commandLine)
{
    // After a bad configuration the run goes on with the defaults.
    System::Runtime::ApplicationConfigCache& cache = GetConfigCache();
    if (commandLine.HasOption(Id(Option::ConfigJson)))
        m_hasIgnoredConfiguration = !cache.LoadFromString(commandLine.GetValue(Id(Option::ConfigJson)));
    else if (commandLine.HasOption(Id(Option::ConfigFile)))
        m_hasIgnoredConfiguration =
            !cache.LoadFromFile(Text::PathFromUtf8(commandLine.GetValue(Id(Option::ConfigFile))));
    m_settings = cache.AddConfig<SnipBenchConfig>();
}

// The configuration is loaded before there is a log.
void Application::WarnOfIgnoredConfiguration()
{
    if (m_hasIgnoredConfiguration)
        Log::Write(Log::s_snipBench, Log::MessageTypeID::Warning,
                   "Configuration ignored: ", GetConfigCache().GetError());
}

// The trace begins before there is a log.
void Application::WarnOfLostTrace()
{
    System::Time::Trace* const trace = System::Time::Trace::GetCurrent();
    if (trace != nullptr && trace->TakeFailure())
        Log::Write(Log::s_snipBench, Log::MessageTypeID::Warning, "The trace can't be written: ", trace->GetPath());
}

void Application::ReadOptions(const CommandLine& commandLine)
{
    m_outputDirectory = Text::PathFromUtf8(commandLine.GetValue(Id(Option::OutDirectory)));
    const bool isBmp = commandLine.GetValue(Id(Option::OutFileType)).starts_with('b');
    m_fileFormat = isBmp ? FileFormat{"bmp"} : FileFormat{"png"};
    m_oneShot = commandLine.GetBool(Id(Option::OneShot));
    m_keepMask = commandLine.GetBool(Id(Option::KeepMask));
    m_delay = ParseDelay(commandLine.GetValue(Id(Option::Delay)));
    m_annotate = commandLine.GetBool(Id(Option::Annotate));
    m_inputFile = Text::PathFromUtf8(commandLine.GetValue(Id(Option::File)));
}

void Application::PrepareOutputDirectory()
{
    const System::Time::TraceScope step("output directory");
    if (m_outputDirectory.empty())
    {
        m_outputDirectory =
            Text::Join(GetConfigCache().GetRootPath(), m_annotate ? ".temp/Annotations" : ".temp/Screenshots");
    }
    Text::CreateDirectories(m_outputDirectory);
}

void Application::SetReturnCode(std::string_view name)
{
    const ReturnCodeRegistry& registry = ReturnCodeRegistry::GetInstance();
    std::int32_t code = 0;
    if (!registry.FindCode(0, name, code))
        return;
    // After a signal, another thread waits for the end of the run and reads the field.
    std::atomic_ref(m_returnCode).store(code);
    if (std::string text; registry.WriteCode(0, code, text))
        PrintLine(text);
}

bool Application::RequestPermission(std::uint16_t /*kind*/)
{
    return true;
}

void Application::OnPostSystemInitialization(System::Runtime::Application& /*sender*/,
                                             PostSystemInitializationEvent& event)
{
    std::uint32_t typeId = 0;
    if (event.system->GetTypeId(typeId) != Log::Logger::s_typeID)
        return;
    const auto& sinks = static_cast<const Log::Logger*>(event.system)->GetSinks();
    const auto& fileSink = static_cast<const Log::FileLogSink&>(*sinks[1]);
    Log::Write(Log::s_snipBench, Log::MessageTypeID::Always, "v", VersionText, " Preview started.");
    Log::Write(Log::s_snipBench, Log::MessageTypeID::Always, "Using '", Text::PathToUtf8(fileSink.GetCurrentPath()),
               "'.");
}

void Application::OnShutdownRequested()
{
    {
        // Under the lock: otherwise a delay that is about to begin its wait would miss the notice.
        const std::scoped_lock lock(m_delayMutex);
        m_running = false;
    }
    m_delayCondition.notify_all();
    m_wake.Raise();
}

// All files are saved and every log line is written: ending here loses nothing, and going on would fault. A run that
// loses its display before the start is over ends as one without a display.
void Application::OnDisplayLost()
{
    if (m_returnCode == UnsetReturnCode)
        SetReturnCode(m_hasStarted ? ReturnCodeName::Success : ReturnCodeName::InitializeSystemsFailed);
    std::_Exit(m_returnCode);
}

} // namespace Orvik::SnipBench
