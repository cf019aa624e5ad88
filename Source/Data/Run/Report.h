#pragma once

#include "Data/Run/ExitCode.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace Orvik::Data
{

/// Text that can be shown on a terminal: what isn't UTF-8 becomes U+FFFD, and control characters become "?".
[[nodiscard]] std::string MakeShowable(std::string_view text);

/// What a run says: findings as they come, then figures. As text, or as one JSON object on standard output. Nothing is
/// kept, however many findings there are. One thread at a time.
class Report
{
public:
    /// Where texts go. As text, the findings go to `findings`, and the rest to `output`; as JSON, all goes to `output`.
    struct Streams
    {
        std::FILE* output = stdout;
        std::FILE* findings = stderr;
    };

    Report(std::string_view verb, bool isJson, Streams streams);
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    /// Names a file and what is wrong with it. The run ends with `Findings` then, at least.
    void AddFinding(const std::filesystem::path& file, std::string_view message);
    [[nodiscard]] std::uint64_t GetFindingCount() const { return m_findings; }

    /// What kept the run from its work: it ends with `CannotRun`.
    void Fail(const std::filesystem::path& file, std::string_view message);

    /// A figure of the whole run, after all findings. `name` is a JSON member's, and `title` what the text says.
    void AddFigure(std::string_view name, std::string_view title, std::int64_t value);

    /// A figure's place for a value that has been written as JSON.
    void AddJson(std::string_view name, const std::string& json);

    /// A line of the text; left out of JSON.
    void AddLine(std::string_view line);

    /// Ends the output. False if not all of it could be written.
    [[nodiscard]] bool Finish();

    /// The run ends with this code, or a higher one.
    void RaiseExitCode(ExitCode code);
    [[nodiscard]] ExitCode GetExitCode() const { return m_exitCode; }

private:
    struct Writer;

    void EndFindings();

    std::unique_ptr<Writer> m_writer; ///< null for text
    Streams m_streams;
    std::uint64_t m_findings = 0;
    ExitCode m_exitCode = ExitCode::Done;
    bool m_isInFindings = true;
};

} // namespace Orvik::Data
