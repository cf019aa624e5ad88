#pragma once

#include "Core/System/Log/LogSite.h"
#include "Core/System/Log/LoggerConfig.h"
#include "Core/System/Log/Sink.h"
#include "Core/System/Runtime/System.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Orvik::System::Log
{

/// The System that turns messages into lines and passes them to its sinks, on the thread that logs. It receives all
/// messages from its construction to its destruction, and drops them while it has no sinks. Lines may come from any
/// thread at any time; everything else belongs to the main thread.
class Logger final
    : public Runtime::SystemBase<Logger, "LogSystem", 9, GUID{0x4392DED52813410E, 0xA3BB393A4153F1F9}, LoggerConfig>,
      public IMessageReceiver
{
public:
    static constexpr std::uint32_t s_typeID = 0x5FC2C68D;

    Logger();
    ~Logger() override;

    /// Opens the sinks: the console, then the file. Throws if the file can't be opened; the console stays open then.
    [[nodiscard]] bool Initialize(const Runtime::IConfig* config) override;
    void OnConfigured() override;
    /// Releases the sinks once no other thread is writing to them.
    void OnShutdown() override;

    [[nodiscard]] bool AcceptsStream(std::uint32_t stream) const override;
    /// Builds the line and gives it to every sink. If a sink throws, that is reported on standard error and the sink
    /// gets no more lines: a log line never ends the program.
    void Receive(std::uint32_t stream, MessageTypeID severity, const std::string& text) override;

    /// Writes a message without the severity gate; the stream gate still applies.
    template <std::uint32_t stream, MessageTypeID severity, typename... Pieces>
    void Write(const Pieces&... pieces)
    {
        if (!AcceptsStream(stream))
            return;
        Receive(stream, severity, JoinPieces(pieces...));
    }

    /// Sets the threshold of `context` to the least severity that is configured for its stream. Without one it stays as
    /// it is.
    void ApplySeverity(Context& context) const override;

    /// The console sink, then the file sink. An entry is empty if its sink couldn't be opened.
    [[nodiscard]] const std::vector<std::shared_ptr<Sink>>& GetSinks() const { return m_sinks; }

private:
    void WriteToSink(std::size_t index, const std::string& line);
    void LeaveOut(std::size_t index, const std::string& reason);

    std::atomic<std::uint32_t> m_enabledStreams{0};
    std::vector<std::uint32_t> m_streamSeverities;
    std::vector<std::shared_ptr<Sink>> m_sinks;
    std::atomic<std::uint32_t> m_failedSinks{0}; ///< a bit for each entry of `m_sinks` that gets no more lines
    std::atomic<std::uint32_t> m_writers{0};     ///< threads that are writing to the sinks
    std::atomic<bool> m_isOpen = false;          ///< lines may go to the sinks
};

/// Registers a context that the `Logger` sets up at its initialisation, or at once if that is over. `context` has to
/// live as long as the process. Static constructors may call this in any order.
void RegisterContext(Context* context);

// The registered contexts of two streams, for lines that only a configuration can enable.
[[nodiscard]] const Context& GetSystemContext() noexcept;
[[nodiscard]] const Context& GetSnipBenchContext() noexcept;

/// Gives `context` the threshold that is configured for its stream. Does nothing without a `Logger`.
void UpdateContext(Context* context);

} // namespace Orvik::System::Log
