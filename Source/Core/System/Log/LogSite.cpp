#include "Core/System/Log/LogSite.h"

#include <atomic>

namespace Orvik::System::Log
{
namespace
{

std::atomic<IMessageReceiver*> s_receiver = nullptr;

} // namespace

IMessageReceiver* SetReceiver(IMessageReceiver* receiver) noexcept
{
    return s_receiver.exchange(receiver);
}

IMessageReceiver* GetReceiver() noexcept
{
    return s_receiver.load();
}

} // namespace Orvik::System::Log
