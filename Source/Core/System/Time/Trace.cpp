#include "Core/System/Time/Trace.h"

#include "Core/System/Text/Paths.h"

#include <array>
#include <cstdio>
#include <fmt/format.h>
#include <system_error>
#include <utility>

namespace Orvik::System::Time
{
namespace
{

constexpr std::string_view s_head = R"({"displayTimeUnit":"ms","traceEvents":[)";
/// Written after each event; the next event overwrites it.
constexpr std::string_view s_tail = "\n]}\n";
constexpr std::size_t s_maximumEvent = 256; ///< bytes: a name of 100 and five numbers

/// Another run that still traces to a file of that name keeps writing to its own.
void RemoveFormer(const std::filesystem::path& file)
{
    std::error_code error;
    if (std::filesystem::symlink_status(file, error).type() == std::filesystem::file_type::regular)
        std::filesystem::remove(file, error);
}

} // namespace

Trace::Trace(const std::filesystem::path& file) : m_path(file)
{
    if (file.empty())
        return;
    Begin();
    s_current.store(this, std::memory_order_release);
    const std::int64_t now = GetMonotonicNanoseconds();
    if (const std::int64_t age = GetProcessAgePlatform(); age > 0)
        Write("process start to main", now - age, now);
}

Trace::~Trace()
{
    Trace* self = this;
    s_current.compare_exchange_strong(self, nullptr);
}

void Trace::Begin()
{
    RemoveFormer(m_path);
    m_file = Text::OpenFile(m_path, "wb");
    m_hasFailed = m_file == nullptr;
    Append(s_head);
}

void Trace::Write(const char* name, std::int64_t begin, std::int64_t end) noexcept
{
    constexpr std::int64_t microsecond = 1'000;
    const std::int64_t duration = end - begin;
    std::array<char, s_maximumEvent> text = {};
    const std::scoped_lock lock(m_mutex);
    const auto result = fmt::format_to_n(
        text.data(), text.size(), R"({}{{"name":"{}","ph":"X","ts":{}.{:03},"dur":{}.{:03},"pid":{},"tid":{}}})",
        m_hasEvents ? ",\n" : "\n", name, begin / microsecond, begin % microsecond, duration / microsecond,
        duration % microsecond, GetProcessNumberPlatform(), GetThreadNumberPlatform());
    if (result.size > text.size())
        return;
    Append({text.data(), result.size});
    m_hasEvents = true;
}

// The end is written immediately and then overwritten: so the file is whole even if nothing follows.
void Trace::Append(std::string_view text) noexcept
{
    if (m_file == nullptr)
        return;
    std::FILE* const file = m_file.get();
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file) == text.size() &&
                           std::fwrite(s_tail.data(), 1, s_tail.size(), file) == s_tail.size() &&
                           std::fflush(file) == 0 && std::fseek(file, -static_cast<long>(s_tail.size()), SEEK_CUR) == 0;
    if (isWritten)
        return;
    m_file.reset();
    m_hasFailed = true;
}

bool Trace::TakeFailure() noexcept
{
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_hasFailed, false);
}

} // namespace Orvik::System::Time
