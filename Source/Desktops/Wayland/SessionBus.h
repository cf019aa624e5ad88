#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

struct sd_bus;
struct sd_bus_message;
struct sd_bus_slot;

namespace Orvik::Desktops::Wayland
{

struct BusMessageDeleter
{
    void operator()(sd_bus_message* message) const noexcept;
};

struct BusSlotDeleter
{
    void operator()(sd_bus_slot* slot) const noexcept;
};

using BusMessage = std::unique_ptr<sd_bus_message, BusMessageDeleter>;

/// What came of a call.
struct BusReply
{
    BusMessage message;    ///< null where it failed
    std::string errorName; ///< then the error's name on the bus, empty if nothing has answered
    std::string errorText; ///< and what it says, without a full stop

    /// Whether what was called isn't there: no such service, object or operation.
    [[nodiscard]] bool IsMissing() const;
};

/// A signal that is awaited, for as long as the object lives.
struct BusSubscription
{
    using Handler = std::function<void(sd_bus_message* message)>;

    std::unique_ptr<Handler> handler;
    std::unique_ptr<sd_bus_slot, BusSlotDeleter> slot; ///< goes first: it calls the handler
};

/// A connection to the session's message bus. What comes from it is handed out while something is awaited, and at no
/// other time. The main thread.
class SessionBus
{
public:
    /// Asked again and again while something is awaited: true ends the wait.
    using Interrupt = std::function<bool()>;

    /// Connects to the bus that the environment names. Null if there is none or it doesn't answer; `failure` then says
    /// why, without a full stop.
    [[nodiscard]] static std::unique_ptr<SessionBus> Open(Interrupt interrupt, std::string& failure);

    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// The beginning of a call, without arguments yet. Null if the bus is gone.
    [[nodiscard]] BusMessage MakeCall(const char* service, const char* path, const char* interface, const char* member);

    /// Whether a service of that name is there or can be started.
    [[nodiscard]] bool HasService(const std::string& name);

    /// Sends the call and waits for its answer, that many nanoseconds at the most.
    [[nodiscard]] BusReply Call(const BusMessage& call, std::int64_t nanoseconds);

    /// Sends a call that nothing answers.
    void Send(const BusMessage& call);

    /// Has `handler` called for each signal of that name from such an object that comes of later calls, from any
    /// sender. Null members if the bus is gone.
    [[nodiscard]] BusSubscription Subscribe(const char* path, const char* interface, const char* member,
                                            BusSubscription::Handler handler);

    /// Waits until `isDone` is, that many nanoseconds at the most, less than 0 without a limit. False if that isn't so
    /// by then, the bus is gone, or the wait was interrupted.
    [[nodiscard]] bool WaitUntil(const std::function<bool()>& isDone, std::int64_t nanoseconds);

    /// Whether a wait was interrupted.
    [[nodiscard]] bool IsInterrupted() const { return m_isInterrupted; }

    /// The name of this connection on the bus, such as ":1.42"; empty once it is lost.
    [[nodiscard]] std::string GetUniqueName() const;

private:
    SessionBus(sd_bus* bus, Interrupt interrupt) : m_bus(bus), m_interrupt(std::move(interrupt)) {}

    /// Hands out what has come. False if there was nothing, or the bus is gone.
    bool Process();
    void WaitForBus(std::int64_t nanoseconds);

    sd_bus* m_bus;
    Interrupt m_interrupt;
    bool m_isLost = false; ///< the bus has gone away, or never answered
    bool m_isInterrupted = false;
};

} // namespace Orvik::Desktops::Wayland
