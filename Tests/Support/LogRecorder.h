#pragma once

#include "Core/System/Log/LogSite.h"

#include <string>
#include <vector>

namespace Orvik::Tests
{

/// Receives the messages of all log sites while it lives.
class LogRecorder final : public System::Log::IMessageReceiver
{
public:
    LogRecorder();
    ~LogRecorder() override;
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    [[nodiscard]] bool AcceptsStream(std::uint32_t stream) const override;
    void Receive(std::uint32_t stream, System::Log::MessageTypeID severity, const std::string& text) override;
    void ApplySeverity(System::Log::Context& context) const override; ///< as the receiver before it does

    /// The messages so far, each as "Stream Severity: text".
    [[nodiscard]] const std::vector<std::string>& GetLines() const { return m_lines; }
    void Clear() { m_lines.clear(); }

private:
    System::Log::IMessageReceiver* m_previous;
    std::vector<std::string> m_lines;
};

} // namespace Orvik::Tests
