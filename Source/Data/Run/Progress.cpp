#include "Data/Run/Progress.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace Orvik::Data
{
namespace
{

constexpr std::chrono::milliseconds s_quietBegin{500};
constexpr std::chrono::milliseconds s_period{100};
constexpr std::size_t s_barLength = 30;

} // namespace

Progress::Progress(std::string title, std::size_t total, std::FILE& stream, bool isTerminal)
    : m_title(std::move(title)),
      m_total(total),
      m_stream(stream),
      m_isTerminal(isTerminal),
      m_next(std::chrono::steady_clock::now() + s_quietBegin)
{
}

Progress::~Progress()
{
    Clear();
}

void Progress::Step()
{
    ++m_done;
    if (!m_isTerminal)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (now < m_next)
        return;
    m_next = now + s_period;
    Show();
}

void Progress::Show()
{
    const std::size_t done = std::min(m_done, m_total);
    const std::size_t full = m_total > 0 ? done * s_barLength / m_total : s_barLength;
    fmt::print(&m_stream, "\r{} [{:<{}}] {}/{}", m_title, std::string(full, '#'), s_barLength, done, m_total);
    (void)std::fflush(&m_stream);
    m_isShown = true;
}

void Progress::Clear()
{
    if (!m_isShown)
        return;
    const std::string number = std::to_string(m_total);
    const std::size_t width = m_title.size() + s_barLength + 2 * number.size() + 5;
    fmt::print(&m_stream, "\r{:{}}\r", "", width);
    (void)std::fflush(&m_stream);
    m_isShown = false;
}

} // namespace Orvik::Data
