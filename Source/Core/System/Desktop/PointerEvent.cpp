#include "Core/System/Desktop/PointerEvent.h"

#include <atomic>

namespace Orvik::System::Device::Cursor
{
namespace
{

thread_local const Math::Point* t_position = nullptr; ///< other threads ask the desktop
std::atomic<bool> s_hasOwnMotion = false;             ///< any thread may move the pointer

} // namespace

PointerEventScope::PointerEventScope(const Math::Point& position) noexcept
{
    t_position = &position;
}

PointerEventScope::~PointerEventScope()
{
    t_position = nullptr;
}

const Math::Point* PointerEventScope::GetPosition() noexcept
{
    return t_position;
}

void AnnounceOwnMotion() noexcept
{
    s_hasOwnMotion = true;
}

bool TakeOwnMotion() noexcept
{
    return s_hasOwnMotion.exchange(false);
}

} // namespace Orvik::System::Device::Cursor
