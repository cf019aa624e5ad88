#include "Core/Graphics/Tools/EdgeReserve.h"

namespace Orvik::Graphics::Tools
{
namespace
{

/// A hand that pushes goes back in steps of a few pixels. From there on a pixel isn't noticed.
constexpr std::int32_t s_longestStep = 8;

bool IsNearEnd(std::int32_t position, std::int32_t windowSize)
{
    return position >= windowSize - s_longestStep;
}

} // namespace

void EdgeReserve::Begin(System::Math::Point pointer)
{
    m_pointer = pointer;
    m_reserve = {0, 0};
}

System::Math::Point EdgeReserve::ToCursor(System::Math::Point pointer, Size window)
{
    m_pointer = pointer;
    return {IsNearEnd(pointer.x, window.width) ? pointer.x + m_reserve.x : pointer.x,
            IsNearEnd(pointer.y, window.height) ? pointer.y + m_reserve.y : pointer.y};
}

bool EdgeReserve::Follow(System::Math::Point cursor, Size window)
{
    const System::Math::Point before = m_reserve;
    m_reserve = {cursor.x >= window.width - 1 ? 1 : 0, cursor.y >= window.height - 1 ? 1 : 0};
    return m_reserve != before && ToPointer(cursor) != m_pointer;
}

} // namespace Orvik::Graphics::Tools
