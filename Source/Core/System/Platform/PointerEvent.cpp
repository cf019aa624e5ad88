#include "Core/System/Platform/PointerEvent.h"

#include <utility>

namespace Orvik::System::Platform
{
namespace
{

const Math::Point* s_position = nullptr;
bool s_hasOwnMotion = false;

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

void AnnounceOwnMotion() noexcept
{
    s_hasOwnMotion = true;
}

bool TakeOwnMotion() noexcept
{
    return std::exchange(s_hasOwnMotion, false);
}

} // namespace Orvik::System::Platform
