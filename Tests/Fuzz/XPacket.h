#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace Orvik::Fuzz
{

/// A value in the order of bytes of this machine; 0 if it ends beyond the bytes.
template <typename Value>
[[nodiscard]] Value ReadValue(std::span<const std::uint8_t> bytes, std::size_t place)
{
    Value value = 0;
    if (place + sizeof(value) <= bytes.size())
        std::memcpy(&value, &bytes[place], sizeof(value));
    return value;
}

/// An answer, an error or an event of an X server, in the order of bytes of this machine. Its size is a multiple of
/// four and at least 32.
class XPacket
{
public:
    static constexpr std::uint8_t s_error = 0;
    static constexpr std::uint8_t s_answer = 1;
    static constexpr std::uint8_t s_genericEvent = 35;
    static constexpr std::size_t s_leastBytes = 32;

    explicit XPacket(std::uint8_t kind, std::size_t bytes = s_leastBytes) : m_bytes(bytes) { m_bytes[0] = kind; }

    /// Places beyond the end are 0, and can't be set.
    template <typename Value>
    [[nodiscard]] Value Get(std::size_t place) const
    {
        return ReadValue<Value>(m_bytes, place);
    }
    template <typename Value>
    void Set(std::size_t place, Value value)
    {
        if (place + sizeof(value) <= m_bytes.size())
            std::memcpy(&m_bytes[place], &value, sizeof(value));
    }

    void Add(std::uint32_t word)
    {
        m_bytes.resize(m_bytes.size() + sizeof(word));
        Set(m_bytes.size() - sizeof(word), word);
    }

    /// New bytes are 0.
    void Resize(std::size_t bytes) { m_bytes.resize((bytes + 3) / 4 * 4); }
    void Grow(std::size_t bytes)
    {
        if (bytes > m_bytes.size())
            Resize(bytes);
    }
    [[nodiscard]] std::size_t GetSize() const { return m_bytes.size(); }

    /// Sets what keeps the two ends in step: the number of the last request, and the length of what may be longer.
    [[nodiscard]] const std::vector<std::uint8_t>& Finish(std::uint16_t sequence)
    {
        Set(2, sequence);
        if (m_bytes[0] == s_answer || m_bytes[0] == s_genericEvent)
            Set(4, static_cast<std::uint32_t>((m_bytes.size() - s_leastBytes) / 4));
        return m_bytes;
    }

private:
    std::vector<std::uint8_t> m_bytes;
};

} // namespace Orvik::Fuzz
