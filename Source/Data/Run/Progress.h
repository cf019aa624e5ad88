#pragma once

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <string>

namespace Orvik::Data
{

/// A bar that shows how much of a long work is done, on a terminal alone. It goes when the object does.
class Progress
{
public:
    /// `stream` is shown on a terminal if `isTerminal`; nothing is ever written otherwise.
    Progress(std::string title, std::size_t total, std::FILE& stream, bool isTerminal);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Another part is done. The bar changes ten times a second at most, and not within the first.
    void Step();

    /// Takes the bar off the terminal, so that a line can be printed; the next step brings it back.
    void Clear();

private:
    void Show();

    std::string m_title;
    std::size_t m_total;
    std::size_t m_done = 0;
    std::FILE& m_stream;
    bool m_isTerminal;
    bool m_isShown = false;
    std::chrono::steady_clock::time_point m_next;
};

} // namespace Orvik::Data
