#include "Data/Run/Report.h"

#include "Core/System/Text/Paths.h"
#include "Core/System/Text/Unicode.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <rapidjson/filewritestream.h>
#include <rapidjson/writer.h>

namespace Orvik::Data
{
namespace
{

std::string MakeValid(std::string_view text)
{
    return System::Text::ToUtf8(System::Text::ToWide(text));
}

void PrintLine(std::FILE* stream, const std::string& line)
{
    const std::string text = line + "\n";
    (void)std::fwrite(text.data(), 1, text.size(), stream); // `Finish` reports it
}

rapidjson::SizeType GetLength(std::string_view text)
{
    return static_cast<rapidjson::SizeType>(text.size());
}

} // namespace

struct Report::Writer
{
    explicit Writer(std::FILE* file) : stream(file, buffer.data(), buffer.size()), json(stream) {}

    std::array<char, std::size_t{16}* 1024> buffer = {};
    rapidjson::FileWriteStream stream;
    rapidjson::Writer<rapidjson::FileWriteStream> json;
};

std::string MakeShowable(std::string_view text)
{
    std::string shown = MakeValid(text);
    std::replace_if(
        shown.begin(), shown.end(),
        [](char character) { return static_cast<unsigned char>(character) < ' ' || character == '\x7F'; }, '?');
    return shown;
}

Report::Report(std::string_view verb, bool isJson, Streams streams)
    : m_writer(isJson ? std::make_unique<Writer>(streams.output) : nullptr), m_streams(streams)
{
    if (m_writer == nullptr)
        return;
    m_writer->json.StartObject();
    m_writer->json.Key("verb");
    m_writer->json.String(verb.data(), GetLength(verb));
    m_writer->json.Key("findings");
    m_writer->json.StartArray();
}

Report::~Report() = default;

void Report::AddFinding(const std::filesystem::path& file, std::string_view message)
{
    ++m_findings;
    m_exitCode = std::max(m_exitCode, ExitCode::Findings);
    const std::string name = System::Text::PathToUtf8(file);
    if (m_writer == nullptr)
    {
        PrintLine(m_streams.findings, fmt::format("{}: {}", MakeShowable(name), MakeShowable(message)));
        return;
    }
    if (!m_isInFindings)
        return;
    const std::string validName = MakeValid(name);
    const std::string validMessage = MakeValid(message);
    m_writer->json.StartObject();
    m_writer->json.Key("file");
    m_writer->json.String(validName.data(), GetLength(validName));
    m_writer->json.Key("message");
    m_writer->json.String(validMessage.data(), GetLength(validMessage));
    m_writer->json.EndObject();
}

void Report::Fail(const std::filesystem::path& file, std::string_view message)
{
    AddFinding(file, message);
    m_exitCode = ExitCode::CannotRun;
}

void Report::RaiseExitCode(ExitCode code)
{
    m_exitCode = std::max(m_exitCode, code);
}

void Report::EndFindings()
{
    if (m_isInFindings)
        m_writer->json.EndArray();
    m_isInFindings = false;
}

void Report::AddFigure(std::string_view name, std::string_view title, std::int64_t value)
{
    if (m_writer == nullptr)
    {
        PrintLine(m_streams.output, fmt::format("{}: {}", title, value));
        return;
    }
    EndFindings();
    m_writer->json.Key(name.data(), GetLength(name));
    m_writer->json.Int64(value);
}

void Report::AddJson(std::string_view name, const std::string& json)
{
    if (m_writer == nullptr)
        return;
    EndFindings();
    m_writer->json.Key(name.data(), GetLength(name));
    m_writer->json.RawValue(json.data(), json.size(), rapidjson::kObjectType);
}

void Report::AddLine(std::string_view line)
{
    if (m_writer == nullptr)
        PrintLine(m_streams.output, std::string(line));
}

bool Report::Finish()
{
    if (m_writer != nullptr)
    {
        EndFindings();
        m_writer->json.Key("code");
        m_writer->json.Int(static_cast<int>(m_exitCode));
        m_writer->json.EndObject();
        m_writer->stream.Put('\n');
        m_writer->stream.Flush();
    }
    return std::fflush(m_streams.output) == 0 && std::ferror(m_streams.output) == 0;
}

} // namespace Orvik::Data
