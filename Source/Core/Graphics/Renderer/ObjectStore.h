#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace Orvik::Graphics::Renderer
{

/// The render objects of one kind, by value, in order of creation. `Object` has a field `id`, unsigned 16 bits. Ids
/// count up from 1 over the whole process and are not reused before the counter wraps; 0 means no object.
template <typename Object>
class ObjectStore
{
public:
    /// Appends an object with its start values and a new id. The reference is valid until the next `Add` or `Remove`.
    Object& Add()
    {
        Object& object = m_objects.emplace_back();
        object.id = NextId();
        return object;
    }

    /// The object, or null; of two with the same id the older. Valid until the next `Add` or `Remove`.
    [[nodiscard]] Object* Find(std::uint16_t id)
    {
        const auto found =
            std::find_if(m_objects.begin(), m_objects.end(), [id](const Object& object) { return object.id == id; });
        return found != m_objects.end() ? &*found : nullptr;
    }

    /// Removes the object and returns it; the last one moves to its place, so the order changes. Empty if there is no
    /// such object. Of two with the same id, which a wrapped counter makes, it removes the younger.
    std::optional<Object> Remove(std::uint16_t id)
    {
        const auto found =
            std::find_if(m_objects.rbegin(), m_objects.rend(), [id](const Object& object) { return object.id == id; });
        if (found == m_objects.rend())
            return std::nullopt;
        std::optional<Object> removed = std::move(*found);
        if (&*found != &m_objects.back())
            *found = std::move(m_objects.back());
        m_objects.pop_back();
        return removed;
    }

    void Clear() { m_objects.clear(); }

    [[nodiscard]] auto begin() { return m_objects.begin(); } // for range-for
    [[nodiscard]] auto end() { return m_objects.end(); }
    [[nodiscard]] auto begin() const { return m_objects.begin(); }
    [[nodiscard]] auto end() const { return m_objects.end(); }
    [[nodiscard]] std::size_t GetCount() const { return m_objects.size(); }

private:
    static std::uint16_t NextId()
    {
        static std::uint16_t s_lastId = 0;
        if (++s_lastId == 0)
            ++s_lastId;
        return s_lastId;
    }

    std::vector<Object> m_objects;
};

} // namespace Orvik::Graphics::Renderer
