#include "Core/System/Reflection/TypeRegistry.h"

#include "Core/System/Error/Assertion.h"
#include "Core/System/Types/Hash.h"

#include <array>
#include <utility>

namespace Orvik::System::Reflection
{

std::size_t TypeIdHash::operator()(std::uint32_t typeId) const noexcept
{
    const std::array bytes = {static_cast<char>(typeId), static_cast<char>(typeId >> 8U),
                              static_cast<char>(typeId >> 16U), static_cast<char>(typeId >> 24U)};
    return static_cast<std::size_t>(Types::HashFnv1a({bytes.data(), bytes.size()}));
}

TypeRegistry& TypeRegistry::GetInstance()
{
    static TypeRegistry s_instance;
    return s_instance;
}

const TypeDescription* TypeRegistry::GetTypeDescription(std::uint32_t typeId) const
{
    const std::scoped_lock lock(m_mutex);
    const auto descriptionIt = m_typeIndices.find(typeId);
    if (descriptionIt == m_typeIndices.end())
        return nullptr;
    ORVIK_ASSERT(descriptionIt->second < m_typeDescriptions.size(), "Registry is corrupted");
    return m_typeDescriptions[descriptionIt->second].get();
}

void TypeRegistry::Register(TypeDescription description)
{
    const std::uint32_t typeId = description.typeId;
    const GUID guid = description.guid;
    if (!Enter(std::move(description)))
        ORVIK_ASSERT(GetTypeDescription(typeId)->guid == guid, "TypeId conflict detected");
}

bool TypeRegistry::Enter(TypeDescription description)
{
    const std::scoped_lock lock(m_mutex);
    const auto index = static_cast<std::uint32_t>(m_typeDescriptions.size());
    if (!m_typeIndices.emplace(description.typeId, index).second)
        return false;
    m_typeDescriptions.push_back(std::make_unique<TypeDescription>(std::move(description)));
    return true;
}

} // namespace Orvik::System::Reflection
