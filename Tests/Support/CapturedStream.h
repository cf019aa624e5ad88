#pragma once

#include "Tests/Support/TemporaryDirectory.h"

#include <cstdio>
#include <string>

namespace Orvik::Tests
{

/// A stream of the C library whose text can be read back.
class CapturedStream
{
public:
    /// Throws if there can't be one.
    CapturedStream();
    ~CapturedStream();
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;

    [[nodiscard]] std::FILE* Get() const { return m_file; }

    /// All that was written to it until now.
    [[nodiscard]] std::string Read() const;

private:
    TemporaryDirectory m_directory;
    std::FILE* m_file;
};

} // namespace Orvik::Tests
