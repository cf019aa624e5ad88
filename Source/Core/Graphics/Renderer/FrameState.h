#pragma once

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

namespace Orvik::Graphics::Renderer
{

/// Everything that a frame is made of, as bytes: two frames look the same if these are equal.
class FrameState
{
public:
    bool operator==(const FrameState&) const = default;

    /// `value` has no padding and no pointers.
    template <typename Value>
    void Add(const Value& value)
    {
        static_assert(std::is_trivially_copyable_v<Value>);
        Append(&value, sizeof(value));
    }

    template <typename Value>
    void Add(const std::vector<Value>& values)
    {
        static_assert(std::is_trivially_copyable_v<Value>);
        Add(values.size());
        Append(values.data(), values.size() * sizeof(Value));
    }

    void Clear() { m_bytes.clear(); }

private:
    void Append(const void* bytes, std::size_t count)
    {
        const auto* const first = static_cast<const std::byte*>(bytes);
        m_bytes.insert(m_bytes.end(), first, first + count);
    }

    std::vector<std::byte> m_bytes;
};

} // namespace Orvik::Graphics::Renderer
