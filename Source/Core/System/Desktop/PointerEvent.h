#pragma once

// What a desktop says of the pointer.

#include "Core/System/Types/Point.h"

namespace Orvik::System::Device::Cursor
{

/// Says, while a motion is being delivered, where the pointer was when the motion was made. The desktop may be far
/// ahead by then: a handler that is late and asks the desktop where the pointer is would start a drag at its end.
/// Scopes don't nest, and count for their own thread alone.
class PointerEventScope
{
public:
    /// `position` is in screen pixels and outlives the scope.
    explicit PointerEventScope(const Math::Point& position) noexcept;
    ~PointerEventScope();
    PointerEventScope(const PointerEventScope&) = delete;
    PointerEventScope& operator=(const PointerEventScope&) = delete;

    /// The position of the motion under way on the calling thread, or null.
    [[nodiscard]] static const Math::Point* GetPosition() noexcept;
};

/// The program has moved the pointer itself, and the motion event of that is in the queue. From any thread.
void AnnounceOwnMotion() noexcept;

/// Whether that was announced since the last call.
[[nodiscard]] bool TakeOwnMotion() noexcept;

} // namespace Orvik::System::Device::Cursor
