#pragma once

#include <cstdint>
#include <string>

namespace Orvik::System::Log
{

/// Writes finished log lines to some place.
class Sink
{
public:
    Sink();
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    virtual ~Sink() = default;

    /// `line` is written unchanged; it includes its line end. From any thread.
    virtual void Write(const std::string& line) = 0;

    /// The sinks of a process are numbered from 0 in the order of their construction.
    [[nodiscard]] std::uint32_t GetId() const { return m_id; }

private:
    std::uint32_t m_id;
};

} // namespace Orvik::System::Log
