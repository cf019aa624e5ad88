#include "Data/Formats/Xml.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

namespace Orvik::Data
{
namespace
{

constexpr std::size_t s_maxDepth = 16;
constexpr std::size_t s_maxElements = 300'000;
constexpr std::size_t s_maxNameBytes = 256;

constexpr std::array<std::pair<std::string_view, char>, 5> s_entities = {
    {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};

bool IsSpace(char character)
{
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

bool IsNameCharacter(char character)
{
    const bool isLetter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    const bool isDigit = character >= '0' && character <= '9';
    return isLetter || isDigit || std::string_view("_-.:").find(character) != std::string_view::npos ||
           static_cast<unsigned char>(character) >= 0x80;
}

void AppendUtf8(std::string& text, std::uint32_t code)
{
    const auto add = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (code < 0x80)
    {
        add(code);
        return;
    }
    if (code < 0x800)
        add(0xC0 | code >> 6U);
    else if (code < 0x10000)
    {
        add(0xE0 | code >> 12U);
        add(0x80 | (code >> 6U & 0x3F));
    }
    else
    {
        add(0xF0 | code >> 18U);
        add(0x80 | (code >> 12U & 0x3F));
        add(0x80 | (code >> 6U & 0x3F));
    }
    add(0x80 | (code & 0x3F));
}

bool AppendNumber(std::string& text, std::string_view digits)
{
    const bool isHex = digits.starts_with('x');
    digits.remove_prefix(isHex ? 1 : 0);
    std::uint32_t code = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, code, isHex ? 16 : 10);
    const bool isSurrogate = code >= 0xD800 && code < 0xE000;
    if (error != std::errc() || stop != end || code == 0 || code > 0x10FFFF || isSurrogate)
        return false;
    AppendUtf8(text, code);
    return true;
}

std::string Trim(const std::string& text)
{
    const auto begin = std::find_if_not(text.begin(), text.end(), &IsSpace);
    const auto end = std::find_if_not(text.rbegin(), std::make_reverse_iterator(begin), &IsSpace).base();
    return {begin, end};
}

class Reader
{
public:
    explicit Reader(std::string_view text) : m_text(text) {}

    [[nodiscard]] std::optional<XmlElement> ReadDocument()
    {
        (void)Take("\xEF\xBB\xBF");
        XmlElement root;
        if (!SkipBetween() || !ReadElement(root, 1) || !SkipBetween() || !m_text.empty())
            return std::nullopt;
        return root;
    }

private:
    [[nodiscard]] bool Take(std::string_view start)
    {
        if (!m_text.starts_with(start))
            return false;
        m_text.remove_prefix(start.size());
        return true;
    }

    /// Goes on after the next `end`.
    [[nodiscard]] bool SkipTo(std::string_view end)
    {
        const std::size_t place = m_text.find(end);
        if (place == std::string_view::npos)
            return false;
        m_text.remove_prefix(place + end.size());
        return true;
    }

    void SkipSpaces()
    {
        while (!m_text.empty() && IsSpace(m_text.front()))
            m_text.remove_prefix(1);
    }

    /// A comment or an instruction; `isFound` if there was one.
    [[nodiscard]] bool SkipComment(bool& isFound)
    {
        isFound = true;
        if (Take("<!--"))
            return SkipTo("-->");
        if (Take("<?"))
            return SkipTo("?>");
        isFound = false;
        return true;
    }

    [[nodiscard]] bool SkipBetween()
    {
        bool isFound = true;
        while (isFound)
        {
            SkipSpaces();
            if (!SkipComment(isFound))
                return false;
        }
        return true;
    }

    [[nodiscard]] std::string_view TakeName()
    {
        const auto end = std::find_if_not(m_text.begin(), m_text.end(), &IsNameCharacter);
        const std::string_view name = m_text.substr(0, static_cast<std::size_t>(end - m_text.begin()));
        m_text.remove_prefix(name.size());
        return name.size() <= s_maxNameBytes ? name : std::string_view();
    }

    [[nodiscard]] bool SkipAttributes()
    {
        for (SkipSpaces(); !m_text.empty() && IsNameCharacter(m_text.front()); SkipSpaces())
        {
            if (TakeName().empty())
                return false;
            SkipSpaces();
            if (!Take("="))
                return false;
            SkipSpaces();
            const bool isDone = Take("\"") ? SkipTo("\"") : Take("'") && SkipTo("'");
            if (!isDone)
                return false;
        }
        return true;
    }

    [[nodiscard]] bool ReadElement(XmlElement& element, std::size_t depth)
    {
        if (depth > s_maxDepth || ++m_count > s_maxElements || !Take("<"))
            return false;
        element.name = TakeName();
        if (element.name.empty() || !SkipAttributes())
            return false;
        if (Take("/>"))
            return true;
        return Take(">") && ReadContent(element, depth) && ReadEnd(element);
    }

    [[nodiscard]] bool ReadEnd(const XmlElement& element)
    {
        if (!Take("</") || TakeName() != element.name)
            return false;
        SkipSpaces();
        return Take(">");
    }

    [[nodiscard]] bool ReadContent(XmlElement& element, std::size_t depth)
    {
        std::string text;
        while (!m_text.empty() && !m_text.starts_with("</"))
        {
            bool isComment = false;
            if (!SkipComment(isComment))
                return false;
            if (isComment)
                continue;
            if (m_text.front() != '<')
            {
                if (!ReadCharacters(text))
                    return false;
                continue;
            }
            element.children.emplace_back();
            if (!ReadElement(element.children.back(), depth + 1))
                return false;
        }
        element.text = Trim(text);
        return true;
    }

    /// Up to the next "<".
    [[nodiscard]] bool ReadCharacters(std::string& text)
    {
        while (!m_text.empty() && m_text.front() != '<')
        {
            if (Take("&"))
            {
                if (!ReadEntity(text))
                    return false;
                continue;
            }
            const std::size_t length = std::min(m_text.find_first_of("<&"), m_text.size());
            text += m_text.substr(0, length);
            m_text.remove_prefix(length);
        }
        return true;
    }

    [[nodiscard]] bool ReadEntity(std::string& text)
    {
        constexpr std::size_t longest = 10;
        const std::size_t end = m_text.substr(0, longest).find(';');
        if (end == std::string_view::npos)
            return false;
        const std::string_view name = m_text.substr(0, end);
        m_text.remove_prefix(end + 1);
        if (name.starts_with('#'))
            return AppendNumber(text, name.substr(1));
        const auto* const known = std::find_if(s_entities.begin(), s_entities.end(),
                                               [name](const auto& entity) { return entity.first == name; });
        if (known == s_entities.end())
            return false;
        text += known->second;
        return true;
    }

    std::string_view m_text;
    std::size_t m_count = 0;
};

} // namespace

const XmlElement* XmlElement::Find(std::string_view child) const
{
    const auto found = std::find_if(children.begin(), children.end(),
                                    [child](const XmlElement& candidate) { return candidate.name == child; });
    return found == children.end() ? nullptr : &*found;
}

std::string_view XmlElement::GetText(std::string_view child) const
{
    const XmlElement* const found = Find(child);
    return found != nullptr ? std::string_view(found->text) : std::string_view();
}

std::optional<XmlElement> ReadXml(std::string_view text)
{
    if (text.find('\0') != std::string_view::npos)
        return std::nullopt;
    return Reader(text).ReadDocument();
}

std::string EscapeXml(std::string_view text)
{
    std::string escaped;
    for (const char character : text)
    {
        const auto* const entity = std::find_if(s_entities.begin(), s_entities.end(),
                                                [character](const auto& known) { return known.second == character; });
        if (entity == s_entities.end())
            escaped += character;
        else
            escaped.append("&").append(entity->first).append(";");
    }
    return escaped;
}

} // namespace Orvik::Data
