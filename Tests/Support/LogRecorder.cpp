#include "Tests/Support/LogRecorder.h"

#include "Core/System/Log/Streams.h"

namespace Orvik::Tests
{

LogRecorder::LogRecorder() : m_previous(System::Log::SetReceiver(this))
{
}

LogRecorder::~LogRecorder()
{
    System::Log::SetReceiver(m_previous);
}

bool LogRecorder::AcceptsStream(std::uint32_t /*stream*/) const
{
    return true;
}

void LogRecorder::ApplySeverity(System::Log::Context& context) const
{
    if (m_previous != nullptr)
        m_previous->ApplySeverity(context);
}

void LogRecorder::Receive(std::uint32_t stream, System::Log::MessageTypeID severity, const std::string& text)
{
    m_lines.push_back(std::string(System::Log::GetStreamName(stream)) + " " +
                      std::string(System::Log::messageTypeIDNames[static_cast<std::size_t>(severity)]) + ": " + text);
}

} // namespace Orvik::Tests
