#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace Orvik::Tests
{

/// The program's font as bytes, to be spoilt. An OpenType file: a directory of tables, numbers with the high byte
/// first.
class FontBytes
{
public:
    FontBytes()
    {
        std::ifstream file("Resources/UI/Textures/Mulish-Regular.ttf", std::ios::binary);
        m_bytes.assign(std::istreambuf_iterator<char>(file), {});
        if (m_bytes.empty())
            throw std::runtime_error("The font isn't installed.");
    }

    /// Every outline becomes nonsense; only characters without one are left whole.
    void BreakOutlines()
    {
        const std::size_t entry = FindTable("glyf");
        m_bytes.replace(ReadNumber(entry + 8), ReadNumber(entry + 12), ReadNumber(entry + 12), '\xFF');
    }

    /// The outlines' grid becomes so coarse that everything is drawn that many times as large.
    void Enlarge(std::uint16_t factor)
    {
        const std::size_t unitsPerEm = ReadNumber(FindTable("head") + 8) + 18;
        const auto high = static_cast<unsigned char>(m_bytes.at(unitsPerEm));
        const auto low = static_cast<unsigned char>(m_bytes.at(unitsPerEm + 1));
        const auto units = static_cast<std::uint32_t>((high * 256 + low) / factor);
        m_bytes[unitsPerEm] = static_cast<char>(units / 256);
        m_bytes[unitsPerEm + 1] = static_cast<char>(units % 256);
    }

    [[nodiscard]] const std::string& Get() const { return m_bytes; }

private:
    [[nodiscard]] std::size_t FindTable(const std::string& tag) const { return m_bytes.find(tag, 12); }

    [[nodiscard]] std::size_t ReadNumber(std::size_t offset) const
    {
        std::size_t number = 0;
        for (std::size_t index = 0; index < 4; ++index)
            number = number * 256 + static_cast<unsigned char>(m_bytes.at(offset + index));
        return number;
    }

    std::string m_bytes;
};

} // namespace Orvik::Tests
