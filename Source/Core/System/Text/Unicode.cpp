#include "Core/System/Text/Unicode.h"

#include <array>
#include <cstdint>
#include <optional>

namespace Orvik::System::Text
{
namespace
{

constexpr char32_t s_replacement = 0xFFFD;
constexpr char32_t s_lastCodePoint = 0x10FFFF;

constexpr bool IsHighSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool IsLowSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void AppendUtf8(std::string& text, char32_t code)
{
    const auto append = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (code < 0x80)
        return append(code);
    if (code < 0x800)
    {
        append(0xC0 | (code >> 6));
    }
    else
    {
        if (code < 0x10000)
        {
            append(0xE0 | (code >> 12));
        }
        else
        {
            append(0xF0 | (code >> 18));
            append(0x80 | ((code >> 12) & 0x3F));
        }
        append(0x80 | ((code >> 6) & 0x3F));
    }
    append(0x80 | (code & 0x3F));
}

void AppendWide(std::wstring& text, char32_t code)
{
    if constexpr (sizeof(wchar_t) == 2)
    {
        if (code >= 0x10000)
        {
            text += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
            text += static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
            return;
        }
    }
    text += static_cast<wchar_t>(code);
}

/// Length of the sequence that the lead byte begins, 0 if it is no lead byte.
constexpr std::size_t GetSequenceLength(unsigned char lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    if (lead >= 0xF0 && lead <= 0xF4)
        return 4;
    return 0;
}

/// The code point of the valid sequence of `length` bytes at the beginning of `text`.
std::optional<char32_t> DecodeSequence(std::string_view text, std::size_t length)
{
    if (length == 0 || length > text.size())
        return std::nullopt;
    constexpr std::array<unsigned char, 5> leadBits = {0, 0x7F, 0x1F, 0x0F, 0x07};
    constexpr std::array<char32_t, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
    char32_t code = static_cast<unsigned char>(text[0]) & leadBits[length];
    for (std::size_t index = 1; index < length; ++index)
    {
        const auto byte = static_cast<unsigned char>(text[index]);
        if ((byte & 0xC0) != 0x80)
            return std::nullopt;
        code = (code << 6) | (byte & 0x3FU);
    }
    if (code < smallest[length] || code > s_lastCodePoint || IsHighSurrogate(code) || IsLowSurrogate(code))
        return std::nullopt;
    return code;
}

} // namespace

std::string ToUtf8(std::wstring_view text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index)
    {
        auto code = static_cast<char32_t>(text[index]);
        if (IsHighSurrogate(code) && index + 1 < text.size() && IsLowSurrogate(static_cast<char32_t>(text[index + 1])))
        {
            const auto low = static_cast<char32_t>(text[++index]);
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        }
        const bool isValid = code <= s_lastCodePoint && !IsHighSurrogate(code) && !IsLowSurrogate(code);
        AppendUtf8(result, isValid ? code : s_replacement);
    }
    return result;
}

std::wstring ToWide(std::string_view text)
{
    std::wstring result;
    result.reserve(text.size());
    for (std::size_t index = 0; index < text.size();)
    {
        const std::size_t length = GetSequenceLength(static_cast<unsigned char>(text[index]));
        const std::optional<char32_t> code = DecodeSequence(text.substr(index), length);
        AppendWide(result, code.value_or(s_replacement));
        index += code ? length : 1;
    }
    return result;
}

} // namespace Orvik::System::Text
