#pragma once

// Wayland's own.

#include <optional>
#include <string>
#include <systemd/sd-bus.h>

namespace Orvik::Desktops::Wayland
{

/// The functions of libsystemd that the ways over the session's message bus call. The library is loaded when one of
/// them is tried first: X11 and most compositors get along without it, and so does a system that hasn't got it.
struct BusFunctions
{
    decltype(&sd_bus_open_user) openUser = nullptr;
    decltype(&sd_bus_is_ready) isReady = nullptr;
    decltype(&sd_bus_close_unref) closeUnref = nullptr;
    decltype(&sd_bus_get_unique_name) getUniqueName = nullptr;
    decltype(&sd_bus_process) process = nullptr;
    decltype(&sd_bus_wait) wait = nullptr;
    decltype(&sd_bus_send) send = nullptr;
    decltype(&sd_bus_call_async) callAsync = nullptr;
    decltype(&sd_bus_match_signal_async) matchSignalAsync = nullptr;
    decltype(&sd_bus_slot_unref) slotUnref = nullptr;
    decltype(&sd_bus_message_new_method_call) newMethodCall = nullptr;
    decltype(&sd_bus_message_ref) messageRef = nullptr;
    decltype(&sd_bus_message_unref) messageUnref = nullptr;
    decltype(&sd_bus_message_get_error) getError = nullptr;
    decltype(&sd_bus_message_set_auto_start) setAutoStart = nullptr;
    decltype(&sd_bus_message_set_expect_reply) setExpectReply = nullptr;
    decltype(&sd_bus_message_append) append = nullptr;
    decltype(&sd_bus_message_read) read = nullptr;
    decltype(&sd_bus_message_skip) skip = nullptr;
    decltype(&sd_bus_message_peek_type) peekType = nullptr;
    decltype(&sd_bus_message_enter_container) enterContainer = nullptr;
    decltype(&sd_bus_message_exit_container) exitContainer = nullptr;
};

/// Looks the functions up in a library, which stays loaded. Nothing if it or one of them isn't there; `failure` then
/// says so, without a full stop.
[[nodiscard]] std::optional<BusFunctions> LoadBusFunctions(const char* library, std::string& failure);

/// The functions of libsystemd, loaded at the first call. Null if they aren't there; `failure` then says why.
[[nodiscard]] const BusFunctions* FindBusFunctions(std::string& failure);

/// The same where a connection to the bus exists already.
[[nodiscard]] const BusFunctions& GetBusFunctions();

} // namespace Orvik::Desktops::Wayland
