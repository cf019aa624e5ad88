#pragma once

#include "Core/System/Log/Streams.h"
#include "Core/System/Runtime/Config.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace Orvik::System::Log
{

/// The configuration of the `Logger`. A document's section sets severities of streams; the rest has no key.
class LoggerConfig final
    : public Runtime::Config<LoggerConfig, "Log System Configuration", 24, GUID{0xF165167543884C6E, 0xBE369051BA999E28}>
{
public:
    static constexpr std::uint32_t s_typeID = 0xACF97F37;
    static constexpr std::string_view s_systemName = "LogSystem"; ///< the section's name

    LoggerConfig() = default;
    /// Both belong to the application that writes the log.
    LoggerConfig(std::filesystem::path dataDirectory, const std::wstring& applicationName);

    /// Log files go to "Logs" in the data directory and have the application's name; every stream has the severity
    /// Info.
    void SetDefaults() override;

    /// Applies the rules of the member "streams". False if there is no such object.
    [[nodiscard]] bool Load(const rapidjson::Value* section) override;

    std::filesystem::path m_logDirectory;
    std::string m_logFileName;                   ///< base name of the log files, UTF-8
    std::uint64_t m_maxFileSize = 0x6400000;     ///< bytes at which a log file is split
    std::uint32_t m_maxFileAge = 10;             ///< days after which a log file is deleted; compared as signed
    std::uint32_t m_enabledStreams = AllStreams; ///< streams that may write at all
    /// Stream masks, one for each `MessageTypeID`: a bit means that the stream was configured with that severity.
    std::vector<std::uint32_t> m_streamSeverities;

private:
    void ApplyRule(std::uint32_t mask, std::size_t severity);

    std::filesystem::path m_dataDirectory;
    std::string m_applicationName; ///< UTF-8
};

} // namespace Orvik::System::Log
