#pragma once

// What a desktop reports about the pointer.

#include "Core/System/Types/Point.h"

namespace Orvik::System::Device::Cursor
{

/// Says, while a motion is being delivered, where the pointer was when the motion was made. The pointer may be far
/// ahead by then: a handler that asks the desktop for the position too late would start a drag at its end. Scopes don't
/// nest, and count only for their own thread.
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

/// To be called when the program has moved the pointer itself: the motion event is in the queue. From any thread.
void AnnounceOwnMotion() noexcept;

/// Whether `AnnounceOwnMotion` was called since the last call of this.
[[nodiscard]] bool TakeOwnMotion() noexcept;

} // namespace Orvik::System::Device::Cursor
