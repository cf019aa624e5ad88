#pragma once

#include "Core/System/Reflection/TypeDescription.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <span>
#include <unordered_map>

namespace Orvik::System::Reflection
{

/// Hashes a type id with FNV-1a over its four bytes, low byte first.
struct TypeIdHash
{
    [[nodiscard]] std::size_t operator()(std::uint32_t typeId) const noexcept;
};

/// The descriptions of the framework's value types, one for each type id. This program's types are registered before
/// `main`; types are never removed. From any thread.
class TypeRegistry
{
public:
    /// The registry of the process.
    [[nodiscard]] static TypeRegistry& GetInstance();

    TypeRegistry() = default;
    TypeRegistry(const TypeRegistry&) = delete;
    TypeRegistry& operator=(const TypeRegistry&) = delete;

    /// Adds a type, which has a `TypeIdentity`. `name` and the names in `fields` have to be constants. The same type
    /// with the same `guid` a second time changes nothing; with another one it is an assertion failure.
    template <typename T>
    void RegisterType(std::string_view name, std::string_view description, const GUID& guid,
                      std::span<const FieldDescription> fields)
    {
        Register({TypeIdentity<T>::typeId,
                  static_cast<std::uint32_t>(sizeof(T)),
                  TypeIdentity<T>::typeName,
                  name,
                  std::string(description),
                  guid,
                  {fields.begin(), fields.end()}});
    }

    /// The description of a type, or null. It stays valid for the life of the registry.
    [[nodiscard]] const TypeDescription* GetTypeDescription(std::uint32_t typeId) const;

private:
    static constexpr std::size_t s_initialBuckets = 8;

    void Register(TypeDescription description);
    /// False, and nothing changes, if there is a type with that id. Other threads see look-up and entry as one step.
    [[nodiscard]] bool Enter(TypeDescription description);

    mutable std::mutex m_mutex;
    std::unordered_map<std::uint32_t, std::uint32_t, TypeIdHash> m_typeIndices{s_initialBuckets};
    std::vector<std::unique_ptr<TypeDescription>> m_typeDescriptions; ///< in the order of registration
};

} // namespace Orvik::System::Reflection
