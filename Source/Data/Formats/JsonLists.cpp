#include "Data/Formats/JsonLists.h"

#include "Core/System/Text/Files.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <memory>
#include <rapidjson/filereadstream.h>
#include <system_error>

namespace Orvik::Data
{
namespace
{

/// Of one object, or of what is passed over.
constexpr std::size_t s_maxPartBytes = std::size_t{16} * 1024 * 1024;

/// A file for the JSON library that ends where a part of it becomes too long.
class LimitedStream
{
public:
    using Ch = char;

    LimitedStream(std::FILE* file, char* buffer, std::size_t size) : m_stream(file, buffer, size) {}

    void BeginPart() { m_end = m_stream.Tell() + s_maxPartBytes; }

    [[nodiscard]] Ch Peek() const { return m_stream.Tell() < m_end ? m_stream.Peek() : '\0'; }
    Ch Take() { return m_stream.Tell() < m_end ? m_stream.Take() : '\0'; }
    [[nodiscard]] std::size_t Tell() const { return m_stream.Tell(); }

    // Called for streams that are written to alone.
    Ch* PutBegin() { return nullptr; }
    void Put(Ch /*character*/) {}
    void Flush() {}
    std::size_t PutEnd(Ch* /*begin*/) { return 0; }

private:
    rapidjson::FileReadStream m_stream;
    std::size_t m_end = s_maxPartBytes;
};

class Reader
{
public:
    Reader(std::FILE* file, const std::vector<std::pair<std::string, TakeJsonObject>>& lists)
        : m_lists(lists), m_stream(file, m_buffer.data(), m_buffer.size())
    {
    }

    [[nodiscard]] std::string Read()
    {
        if (!Take('{'))
            return MakeError();
        while (!Take('}'))
        {
            if (m_hasMembers && !Take(','))
                return MakeError();
            m_hasMembers = true;
            rapidjson::Document key;
            if (!ParseValue(key) || !key.IsString() || !Take(':'))
                return MakeError();
            const std::string error = ReadMember(key.GetString());
            if (!error.empty())
                return error;
        }
        SkipSpaces();
        return m_stream.Peek() == '\0' ? "" : MakeError();
    }

private:
    void SkipSpaces()
    {
        m_stream.BeginPart();
        while (m_stream.Peek() == ' ' || m_stream.Peek() == '\t' || m_stream.Peek() == '\n' || m_stream.Peek() == '\r')
            m_stream.Take();
    }

    [[nodiscard]] bool Take(char character)
    {
        SkipSpaces();
        if (m_stream.Peek() != character)
            return false;
        m_stream.Take();
        return true;
    }

    [[nodiscard]] bool ParseValue(rapidjson::Document& document)
    {
        SkipSpaces();
        m_stream.BeginPart();
        document.ParseStream<rapidjson::kParseIterativeFlag | rapidjson::kParseStopWhenDoneFlag>(m_stream);
        return !document.HasParseError();
    }

    [[nodiscard]] std::string MakeError() const
    {
        return fmt::format("isn't the JSON that was expected, near byte {}", m_stream.Tell());
    }

    /// A list is read object by object, wanted or not.
    [[nodiscard]] std::string ReadMember(const std::string& name)
    {
        const auto list =
            std::find_if(m_lists.begin(), m_lists.end(), [&name](const auto& wanted) { return wanted.first == name; });
        if (!Take('['))
        {
            rapidjson::Document passed;
            return ParseValue(passed) ? "" : MakeError();
        }
        bool hasElements = false;
        while (!Take(']'))
        {
            rapidjson::Document element;
            if ((hasElements && !Take(',')) || !ParseValue(element))
                return MakeError();
            hasElements = true;
            if (list == m_lists.end())
                continue;
            const std::string error = element.IsObject() ? list->second(element) : MakeError();
            if (!error.empty())
                return error;
        }
        return {};
    }

    const std::vector<std::pair<std::string, TakeJsonObject>>& m_lists;
    std::array<char, std::size_t{64}* 1024> m_buffer = {};
    LimitedStream m_stream;
    bool m_hasMembers = false;
};

} // namespace

std::string ReadJsonLists(const std::filesystem::path& path,
                          const std::vector<std::pair<std::string, TakeJsonObject>>& lists)
{
    std::error_code error;
    const System::Text::File file =
        std::filesystem::is_regular_file(path, error) ? System::Text::OpenFile(path, "rb") : nullptr;
    if (file == nullptr)
        return "can't be read";
    return std::make_unique<Reader>(file.get(), lists)->Read();
}

} // namespace Orvik::Data
