#include "Data/Formats/Yaml.h"

#include "Data/Records/Record.h"

#include <charconv>
#include <fmt/format.h>
#include <string_view>

namespace Orvik::Data
{
namespace
{

std::string Quote(const std::string& text)
{
    std::string quoted = "\"";
    for (const char character : text)
    {
        if (character == '"' || character == '\\')
            quoted += '\\';
        quoted += character;
    }
    return quoted + "\"";
}

bool IsSpace(char character)
{
    return character == ' ' || character == '\t';
}

bool IsLineEnd(char character)
{
    return character == '\n' || character == '\r';
}

/// Reads a line from the left to the right; between brackets, on over the ends of lines and the comments there.
class Reader
{
public:
    explicit Reader(std::string_view text) : m_text(text) {}

    void SetBetweenBrackets(bool isBetween) { m_isBetweenBrackets = isBetween; }

    void SkipSpaces()
    {
        while (!m_text.empty())
        {
            const char next = m_text.front();
            if (IsSpace(next) || (m_isBetweenBrackets && IsLineEnd(next)))
                m_text.remove_prefix(1);
            else if (m_isBetweenBrackets && next == '#')
                m_text.remove_prefix(std::min(m_text.find('\n'), m_text.size()));
            else
                return;
        }
    }

    [[nodiscard]] bool Take(char character)
    {
        SkipSpaces();
        if (m_text.empty() || m_text.front() != character)
            return false;
        m_text.remove_prefix(1);
        return true;
    }

    /// Whether nothing is left of the line but a comment.
    [[nodiscard]] bool IsAtEnd()
    {
        SkipSpaces();
        return m_text.empty() || m_text.front() == '#' || IsLineEnd(m_text.front());
    }

    /// A number and the colon after it.
    [[nodiscard]] std::optional<std::size_t> TakeKey()
    {
        SkipSpaces();
        std::size_t key = 0;
        const auto [end, error] = std::from_chars(m_text.data(), m_text.data() + m_text.size(), key);
        if (error != std::errc())
            return std::nullopt;
        m_text.remove_prefix(static_cast<std::size_t>(end - m_text.data()));
        return Take(':') ? std::optional<std::size_t>(key) : std::nullopt;
    }

    /// A text in quotes, or a plain one up to one of `ends`, a comment or the end.
    [[nodiscard]] std::optional<std::string> TakeText(std::string_view ends)
    {
        SkipSpaces();
        if (m_text.empty())
            return std::nullopt;
        if (m_text.front() == '"' || m_text.front() == '\'')
            return TakeQuoted(m_text.front());
        std::size_t length = 0;
        while (length < m_text.size() && ends.find(m_text[length]) == std::string_view::npos &&
               !(m_text[length] == '#' && length > 0 && IsSpace(m_text[length - 1])))
            ++length;
        std::string_view plain = m_text.substr(0, length);
        m_text.remove_prefix(length);
        while (!plain.empty() && IsSpace(plain.back()))
            plain.remove_suffix(1);
        // What would be an anchor, a tag, a collection or a block to YAML is none of ours.
        if (plain.empty() || std::string_view("&*!|>%@`{}[],").find(plain.front()) != std::string_view::npos)
            return std::nullopt;
        return std::string(plain);
    }

private:
    [[nodiscard]] std::optional<std::string> TakeQuoted(char quote)
    {
        std::string text;
        for (std::size_t i = 1; i < m_text.size(); ++i)
        {
            const char character = m_text[i];
            const char next = i + 1 < m_text.size() ? m_text[i + 1] : '\0';
            if (quote == '"' && character == '\\')
            {
                if (next != '"' && next != '\\' && next != '/')
                    return std::nullopt;
                text += next;
                ++i;
            }
            else if (character == quote && quote == '\'' && next == quote)
            {
                text += quote;
                ++i;
            }
            else if (character == quote)
            {
                m_text.remove_prefix(i + 1);
                return text;
            }
            else
                text += character;
        }
        return std::nullopt;
    }

    std::string_view m_text;
    bool m_isBetweenBrackets = false;
};

/// Takes names in the order of their numbers, up to the limit.
bool AddName(std::vector<std::string>& names, std::optional<std::size_t> key, std::optional<std::string> name)
{
    if (!name || (key && *key != names.size()) || names.size() >= s_maxClasses)
        return false;
    names.push_back(std::move(*name));
    return true;
}

/// What stands in one pair of brackets, on one line or several; a comma may stand after the last name.
std::optional<std::vector<std::string>> ReadBrackets(Reader& reader, char end)
{
    std::vector<std::string> names;
    const bool isMap = end == '}';
    reader.SetBetweenBrackets(true);
    while (!reader.Take(end))
    {
        const std::optional<std::size_t> key = isMap ? reader.TakeKey() : std::nullopt;
        if ((isMap && !key) || !AddName(names, key, reader.TakeText(",]}\r\n")))
            return std::nullopt;
        if (reader.Take(','))
            continue;
        if (!reader.Take(end))
            return std::nullopt;
        break;
    }
    reader.SetBetweenBrackets(false);
    return reader.IsAtEnd() ? std::optional(std::move(names)) : std::nullopt;
}

std::vector<std::string_view> SplitLines(std::string_view text)
{
    std::vector<std::string_view> lines;
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        std::string_view line = text.substr(begin, end - begin);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        lines.push_back(line);
        begin = end + 1;
    }
    return lines;
}

/// One line each, "- name" or "0: name", until a line that begins at the left with something else.
std::optional<std::vector<std::string>> ReadBlock(const std::vector<std::string_view>& lines, std::size_t first)
{
    std::vector<std::string> names;
    for (std::size_t i = first; i < lines.size(); ++i)
    {
        Reader reader(lines[i]);
        if (reader.IsAtEnd())
            continue;
        const bool isItem = reader.Take('-');
        if (!isItem && !IsSpace(lines[i].front()))
            break;
        const std::optional<std::size_t> key = isItem ? std::nullopt : reader.TakeKey();
        if ((!isItem && !key) || !AddName(names, key, reader.TakeText("")) || !reader.IsAtEnd())
            return std::nullopt;
    }
    return names;
}

} // namespace

std::string MakeYamlNames(const std::vector<std::string>& names)
{
    std::string text = names.empty() ? "names: {}\n" : "names:\n";
    for (std::size_t i = 0; i < names.size(); ++i)
        text += fmt::format("  {}: {}\n", i, Quote(names[i]));
    return text;
}

std::optional<std::vector<std::string>> ReadYamlNames(const std::string& text)
{
    constexpr std::string_view key = "names:";
    const std::vector<std::string_view> lines = SplitLines(text);
    for (std::size_t i = 0; i < lines.size(); ++i)
    {
        if (!lines[i].starts_with(key))
            continue;
        const char* const value = lines[i].data() + key.size();
        Reader reader({value, static_cast<std::size_t>(text.data() + text.size() - value)});
        if (reader.Take('['))
            return ReadBrackets(reader, ']');
        if (reader.Take('{'))
            return ReadBrackets(reader, '}');
        return reader.IsAtEnd() ? ReadBlock(lines, i + 1) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace Orvik::Data
