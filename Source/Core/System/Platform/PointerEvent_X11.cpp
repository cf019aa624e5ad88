#include "Core/System/Platform/PointerEvent.h"

namespace Orvik::System::Platform
{
namespace
{

const Math::Point* s_position = nullptr;

} // namespace

PointerEventScope::PointerEventScope(const Math::Point& position) noexcept
{
    s_position = &position;
}

PointerEventScope::~PointerEventScope()
{
    s_position = nullptr;
}

const Math::Point* PointerEventScope::GetPosition() noexcept
{
    return s_position;
}

} // namespace Orvik::System::Platform
