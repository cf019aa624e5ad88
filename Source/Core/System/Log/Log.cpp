#include "Core/System/Log/Log.h"

#include "Core/System/Error/Assertion.h"
#include "Core/System/Error/Exception.h"
#include "Core/System/Log/ConsoleLogSink.h"
#include "Core/System/Log/FileLogSink.h"
#include "Core/System/Time/Timestamp.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <thread>

namespace Orvik::System::Log
{
namespace
{

constexpr std::uint64_t s_minFileSize = 0xA00000; // bytes
constexpr std::int32_t s_minFileAge = 10;         // days

/// Made on first use, so that static constructors of any order may add to it.
std::vector<Context*>& GetContextList()
{
    static std::vector<Context*> s_contexts;
    return s_contexts;
}

/// A context whose threshold follows the configuration.
struct RegisteredContext : Context
{
    explicit RegisteredContext(StreamID streamId) : Context{.stream = streamId} { RegisterContext(this); }
};

RegisteredContext s_snipBenchContext(StreamID::SnipBench);
RegisteredContext s_systemContext(StreamID::System);
RegisteredContext s_graphicsContext(StreamID::Graphics);

/// Sets a flag at the end of the scope, however it is left.
class SetAtEnd
{
public:
    explicit SetAtEnd(std::atomic<bool>& flag) : m_flag(flag) {}
    ~SetAtEnd() { m_flag = true; }
    SetAtEnd(const SetAtEnd&) = delete;
    SetAtEnd& operator=(const SetAtEnd&) = delete;

private:
    std::atomic<bool>& m_flag;
};

/// Counts a thread during the scope, however it is left.
class Counted
{
public:
    explicit Counted(std::atomic<std::uint32_t>& count) : m_count(count) { ++m_count; }
    ~Counted() { --m_count; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

private:
    std::atomic<std::uint32_t>& m_count;
};

std::string MakeLine(std::uint32_t stream, MessageTypeID severity, const std::string& text)
{
    std::ostringstream line;
    line << "[" << Time::FormatTimestamp(Time::GetSystemTicks()) << " | " << GetStreamName(stream) << "] ";
    if (severity != MessageTypeID::Always)
        line << messageTypeIDNames[static_cast<std::size_t>(severity)] << ": ";
    line << text << "\n";
    return line.str();
}

} // namespace

Logger::Logger()
{
    SetReceiver(this);
}

Logger::~Logger()
{
    if (GetReceiver() == this)
        SetReceiver(nullptr);
}

bool Logger::Initialize(const Runtime::IConfig* config)
{
    ORVIK_ASSERT(config != nullptr, "Function parameter 'config' must be non-null.");
    const auto& settings = static_cast<const LoggerConfig&>(*config);
    m_enabledStreams = settings.m_enabledStreams;
    const std::uint64_t maxFileSize = std::max(settings.m_maxFileSize, s_minFileSize);
    const std::int32_t maxFileAge = std::max(static_cast<std::int32_t>(settings.m_maxFileAge), s_minFileAge);
    m_streamSeverities = settings.m_streamSeverities;

    m_sinks.resize(2);
    m_failedSinks = 0;
    m_sinks[0] = std::make_shared<ConsoleLogSink>();
    const SetAtEnd opened(m_isOpen); // with only the console if the file can't be opened
    const auto fileSink = std::make_shared<FileLogSink>(settings.m_logDirectory, settings.m_logFileName, maxFileSize,
                                                        static_cast<std::uint32_t>(maxFileAge));
    if (!fileSink->Open())
    {
        throw Error::ExceptionWithDetails(
            ORVIK_HERE, Error::ErrorDetails(Error::ServiceStartupError, "Failed to initialize log file."));
    }
    m_sinks[1] = fileSink;

    const std::vector<Context*> contexts = GetContextList();
    for (Context* const context : contexts)
        ApplySeverity(*context);
    return true;
}

void Logger::OnConfigured()
{
}

void Logger::OnShutdown()
{
    m_isOpen = false;
    while (m_writers != 0) // a request to end is logged on a thread of its own
        std::this_thread::yield();
    m_sinks.clear();
}

bool Logger::AcceptsStream(std::uint32_t stream) const
{
    return (m_enabledStreams & stream) != 0;
}

void Logger::Receive(std::uint32_t stream, MessageTypeID severity, const std::string& text)
{
    const Counted writer(m_writers);
    if (!m_isOpen)
        return;
    const std::string line = MakeLine(stream, severity, text);
    for (std::size_t index = 0; index < m_sinks.size(); ++index)
        WriteToSink(index, line);
}

void Logger::WriteToSink(std::size_t index, const std::string& line)
{
    const bool isLeftOut = (m_failedSinks & (std::uint32_t{1} << index)) != 0;
    if (isLeftOut || m_sinks[index] == nullptr)
        return;
    try
    {
        m_sinks[index]->Write(line);
    }
    catch (const std::exception& exception)
    {
        LeaveOut(index, exception.what());
    }
    catch (const Error::Exception& exception)
    {
        std::ostringstream reason;
        exception.WriteMessage(reason);
        LeaveOut(index, reason.str());
    }
}

void Logger::LeaveOut(std::size_t index, const std::string& reason)
{
    const std::uint32_t sink = std::uint32_t{1} << index;
    const bool isReported = (m_failedSinks.fetch_or(sink) & sink) != 0;
    if (!isReported)
        std::cerr << "A log sink failed and gets no further lines: " << reason << std::endl;
}

void Logger::ApplySeverity(Context& context) const
{
    for (std::size_t index = 0; index < m_streamSeverities.size(); ++index)
    {
        if ((m_streamSeverities[index] & context.stream) == 0)
            continue;
        context.severity = static_cast<std::uint32_t>(index);
        return;
    }
}

void RegisterContext(Context* context)
{
    GetContextList().push_back(context);
    UpdateContext(context);
}

const Context& GetSystemContext() noexcept
{
    return s_systemContext;
}

const Context& GetSnipBenchContext() noexcept
{
    return s_snipBenchContext;
}

void UpdateContext(Context* context)
{
    if (const IMessageReceiver* const receiver = GetReceiver())
        receiver->ApplySeverity(*context);
}

} // namespace Orvik::System::Log
