#include "Desktops/Wayland/SessionBus.h"

#include "Core/System/Error/SystemError.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Desktops/Wayland/BusFunctions.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// How often an interrupted wait is looked for.
constexpr std::int64_t s_interruptPeriod = 50'000'000;

/// How long the bus gets to take a client in, and for answers of its own.
constexpr std::int64_t s_welcomeLimit = 1'000'000'000;

constexpr std::int64_t s_nanosecondsPerMicrosecond = 1000;

/// The limit is the wait's; the library's own would end the answer to a question that a person thinks about.
constexpr std::uint64_t s_noTimeout = UINT64_MAX;

struct PendingReply
{
    BusReply reply;
    bool isThere = false;
};

std::string WithoutFullStop(std::string text)
{
    while (!text.empty() && (text.back() == '.' || text.back() == '\n'))
        text.pop_back();
    return text;
}

int OnReply(sd_bus_message* message, void* data, sd_bus_error* /*error*/)
{
    auto& pending = *static_cast<PendingReply*>(data);
    pending.isThere = true;
    if (const sd_bus_error* const error = GetBusFunctions().getError(message))
    {
        pending.reply.errorName = error->name != nullptr ? error->name : "";
        pending.reply.errorText = WithoutFullStop(error->message != nullptr ? error->message : "");
    }
    else
        pending.reply.message.reset(GetBusFunctions().messageRef(message));
    return 0;
}

int OnSignal(sd_bus_message* message, void* data, sd_bus_error* /*error*/)
{
    (*static_cast<BusSubscription::Handler*>(data))(message);
    return 0;
}

/// The bus has taken the wish to hear of a signal, or not. The library's own would close the connection then.
int OnSubscribed(sd_bus_message* /*message*/, void* /*data*/, sd_bus_error* /*error*/)
{
    return 0;
}

} // namespace

void BusMessageDeleter::operator()(sd_bus_message* message) const noexcept
{
    GetBusFunctions().messageUnref(message);
}

void BusSlotDeleter::operator()(sd_bus_slot* slot) const noexcept
{
    GetBusFunctions().slotUnref(slot);
}

bool BusReply::IsMissing() const
{
    constexpr std::array<std::string_view, 6> names = {
        SD_BUS_ERROR_SERVICE_UNKNOWN,   SD_BUS_ERROR_NAME_HAS_NO_OWNER,
        SD_BUS_ERROR_UNKNOWN_METHOD,    SD_BUS_ERROR_UNKNOWN_OBJECT,
        SD_BUS_ERROR_UNKNOWN_INTERFACE, "org.freedesktop.DBus.Error.Spawn.ServiceNotFound"};
    return std::find(names.begin(), names.end(), errorName) != names.end();
}

std::unique_ptr<SessionBus> SessionBus::Open(Interrupt interrupt, std::string& failure)
{
    const BusFunctions* const functions = FindBusFunctions(failure);
    if (functions == nullptr)
        return nullptr;
    sd_bus* bus = nullptr;
    if (const int result = functions->openUser(&bus); result < 0)
    {
        failure = "there is no session bus: " + System::Error::FormatError(static_cast<std::uint32_t>(-result));
        return nullptr;
    }
    std::unique_ptr<SessionBus> session(new SessionBus(bus, std::move(interrupt)));
    if (session->WaitUntil([bus, functions] { return functions->isReady(bus) > 0; }, s_welcomeLimit))
        return session;
    failure = "the session bus doesn't answer";
    return nullptr;
}

SessionBus::~SessionBus()
{
    GetBusFunctions().closeUnref(m_bus);
}

BusMessage SessionBus::MakeCall(const char* service, const char* path, const char* interface, const char* member)
{
    sd_bus_message* message = nullptr;
    if (m_isLost || GetBusFunctions().newMethodCall(m_bus, &message, service, path, interface, member) < 0)
        return nullptr;
    return BusMessage(message);
}

bool SessionBus::HasService(const std::string& name)
{
    for (const char* list : {"ListNames", "ListActivatableNames"})
    {
        const BusReply reply = Call(
            MakeCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", list), s_welcomeLimit);
        if (reply.message == nullptr || GetBusFunctions().enterContainer(reply.message.get(), 'a', "s") <= 0)
            return false;
        for (const char* each = nullptr; GetBusFunctions().read(reply.message.get(), "s", &each) > 0;)
            if (name == each)
                return true;
    }
    return false;
}

BusReply SessionBus::Call(const BusMessage& call, std::int64_t nanoseconds)
{
    PendingReply pending;
    sd_bus_slot* slot = nullptr;
    if (call == nullptr || GetBusFunctions().callAsync(m_bus, &slot, call.get(), &OnReply, &pending, s_noTimeout) < 0)
    {
        pending.reply.errorText = "the session bus is gone";
        return std::move(pending.reply);
    }
    const std::unique_ptr<sd_bus_slot, BusSlotDeleter> guard(slot);
    if (WaitUntil([&pending] { return pending.isThere; }, nanoseconds))
        return std::move(pending.reply);
    pending.reply = {};
    if (m_isInterrupted)
        pending.reply.errorText = "the run was asked to end";
    else
        pending.reply.errorText = m_isLost ? "the session bus is gone" : "there is no answer";
    return std::move(pending.reply);
}

void SessionBus::Send(const BusMessage& call)
{
    if (!m_isLost)
        m_isLost |= GetBusFunctions().send(m_bus, call.get(), nullptr) < 0;
}

BusSubscription SessionBus::Subscribe(const char* path, const char* interface, const char* member,
                                      BusSubscription::Handler handler)
{
    BusSubscription subscription;
    subscription.handler = std::make_unique<BusSubscription::Handler>(std::move(handler));
    sd_bus_slot* slot = nullptr;
    if (m_isLost || GetBusFunctions().matchSignalAsync(m_bus, &slot, nullptr, path, interface, member, &OnSignal,
                                                       &OnSubscribed, subscription.handler.get()) < 0)
        return {};
    subscription.slot.reset(slot);
    return subscription;
}

bool SessionBus::Process()
{
    const int result = GetBusFunctions().process(m_bus, nullptr);
    m_isLost |= result < 0;
    return result > 0;
}

void SessionBus::WaitForBus(std::int64_t nanoseconds)
{
    const std::int64_t period = std::min(nanoseconds, s_interruptPeriod);
    const auto microseconds =
        static_cast<std::uint64_t>(std::max<std::int64_t>(period / s_nanosecondsPerMicrosecond, 1));
    const int result = GetBusFunctions().wait(m_bus, microseconds);
    m_isLost |= result < 0 && result != -EINTR;
}

bool SessionBus::WaitUntil(const std::function<bool()>& isDone, std::int64_t nanoseconds)
{
    const std::int64_t start = System::Time::GetMonotonicNanoseconds();
    while (!isDone())
    {
        if (m_isLost)
            return false;
        m_isInterrupted |= m_interrupt && m_interrupt();
        if (m_isInterrupted)
            return false;
        const std::int64_t passed = System::Time::GetMonotonicNanoseconds() - start;
        if (nanoseconds >= 0 && passed >= nanoseconds)
            return false;
        if (!Process() && !m_isLost)
            WaitForBus(nanoseconds < 0 ? s_interruptPeriod : nanoseconds - passed);
    }
    return true;
}

std::string SessionBus::GetUniqueName() const
{
    const char* name = nullptr;
    return !m_isLost && GetBusFunctions().getUniqueName(m_bus, &name) >= 0 && name != nullptr ? name : std::string();
}

} // namespace Orvik::Desktops::Wayland
