#pragma once

#include "Core/System/Text/Files.h"
#include "Core/System/Time/MonotonicClock.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string_view>

namespace Orvik::System::Time
{

/// Writes how long each step took to a file, in Chrome's trace format: a JSON object with one complete event per step,
/// in microseconds of the monotonic clock. The file is whole after each event, however the process ends.
///
/// The first event is the time from the start of the process to the construction of the trace, if the system reports
/// that. There is one trace at a time, and it outlives the scopes that begin during its life. Events may come from any
/// thread.
class Trace
{
public:
    /// Traces to `file`, which is replaced if it exists, until the object's end; an empty path traces nothing. A file
    /// that can't be written isn't an exception here (`TakeFailure`).
    explicit Trace(const std::filesystem::path& file);
    ~Trace();
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    /// The trace that steps go to; null for none.
    [[nodiscard]] static Trace* GetCurrent() noexcept { return s_current.load(std::memory_order_acquire); }

    /// Adds the step from `begin` to `end`, nanoseconds of the monotonic clock. `name` is written unchanged: it must
    /// have no quotes, backslashes and control characters, and at most 100 bytes.
    void Write(const char* name, std::int64_t begin, std::int64_t end) noexcept;

    /// Whether the file couldn't be opened or written. True only once: the caller reports it.
    [[nodiscard]] bool TakeFailure() noexcept;
    [[nodiscard]] const std::filesystem::path& GetPath() const { return m_path; }

private:
    void Begin();
    /// Writes `text` at the end of the events, and the end of the file.
    void Append(std::string_view text) noexcept;

    static inline constinit std::atomic<Trace*> s_current = nullptr;

    std::filesystem::path m_path;
    std::mutex m_mutex;
    Text::File m_file; ///< null once it has failed
    bool m_hasEvents = false;
    bool m_hasFailed = false;
};

/// Traces the step from here to the object's end, or to `End`. Without a trace it only reads a pointer.
class TraceScope
{
public:
    /// `name` as in `Trace::Write`; it outlives the object. Null: no step.
    explicit TraceScope(const char* name)
        : m_trace(name != nullptr ? Trace::GetCurrent() : nullptr),
          m_name(name),
          m_begin(m_trace != nullptr ? GetMonotonicNanoseconds() : 0)
    {
    }
    ~TraceScope() { End(); }
    TraceScope(const TraceScope&) = delete;
    TraceScope& operator=(const TraceScope&) = delete;

    void End()
    {
        if (m_trace != nullptr)
            m_trace->Write(m_name, m_begin, GetMonotonicNanoseconds());
        m_trace = nullptr;
    }

    /// Ends the step and begins another.
    void Next(const char* name)
    {
        End();
        m_trace = Trace::GetCurrent();
        m_name = name;
        m_begin = m_trace != nullptr ? GetMonotonicNanoseconds() : 0;
    }

private:
    Trace* m_trace;
    const char* m_name;
    std::int64_t m_begin;
};

/// The file that the environment variable ORVIK_TRACE names; empty without one.
[[nodiscard]] std::filesystem::path GetTraceFilePlatform();

/// Nanoseconds since the start of this process, as exactly as the system knows it (Linux: 10 milliseconds, rounded up);
/// 0 if the system doesn't report it.
[[nodiscard]] std::int64_t GetProcessAgePlatform();

[[nodiscard]] std::uint32_t GetProcessNumberPlatform() noexcept;
[[nodiscard]] std::uint32_t GetThreadNumberPlatform() noexcept; ///< of the calling thread

} // namespace Orvik::System::Time
