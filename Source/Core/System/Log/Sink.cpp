#include "Core/System/Log/Sink.h"

namespace Orvik::System::Log
{
namespace
{

/// Incremented before each use, so that the first sink is 0.
std::uint32_t s_lastId = 0xFFFFFFFF;

} // namespace

Sink::Sink() : m_id(++s_lastId)
{
}

} // namespace Orvik::System::Log
