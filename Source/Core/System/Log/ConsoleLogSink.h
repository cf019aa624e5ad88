#pragma once

#include "Core/System/Log/Sink.h"

namespace Orvik::System::Log
{

/// Writes to standard output and flushes each line. Takes no lock: lines of two threads may interleave.
class ConsoleLogSink final : public Sink
{
public:
    void Write(const std::string& line) override;
};

} // namespace Orvik::System::Log
