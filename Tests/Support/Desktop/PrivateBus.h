#pragma once

#include "Tests/Support/Desktop/ProcessFamily.h"

#include <filesystem>
#include <optional>
#include <string>

namespace Orvik::Tests
{

/// Which programs a bus starts when they are called.
enum class BusServices
{
    None,
    Installed, ///< those of this machine
};

/// A session bus (dbus-daemon) of its own, which takes clients of any user, and ends with what it has started.
class PrivateBus
{
public:
    /// `directory` is the user's own, and gets the bus's socket and configuration by that name; `environment` is what
    /// services are started in. Throws `std::runtime_error` if the bus doesn't come up within a minute.
    PrivateBus(const std::filesystem::path& directory, const std::string& name,
               const std::vector<std::string>& environment, std::optional<UserNumbers> user, BusServices services);

    /// What belongs into `DBUS_SESSION_BUS_ADDRESS`.
    [[nodiscard]] const std::string& GetAddress() const { return m_address; }

private:
    std::string m_address;
    std::optional<ProcessFamily> m_daemon;
};

} // namespace Orvik::Tests
