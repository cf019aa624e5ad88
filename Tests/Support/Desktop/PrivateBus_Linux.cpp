#include "Tests/Support/Desktop/PrivateBus.h"

#include "Tests/Support/Desktop/WaitForSocket.h"

#include <fstream>
#include <stdexcept>

namespace Orvik::Tests
{

PrivateBus::PrivateBus(const std::filesystem::path& directory, const std::string& name,
                       const std::vector<std::string>& environment, std::optional<UserNumbers> user,
                       BusServices services)
{
    const std::filesystem::path socket = directory / name;
    const std::filesystem::path configuration = directory / (name + ".conf");
    const std::filesystem::path log = directory / (name + ".log");
    m_address = "unix:path=" + socket.string();
    std::ofstream(configuration) << "<busconfig><type>session</type><listen>" << m_address
                                 << "</listen><auth>EXTERNAL</auth>"
                                 << (services == BusServices::Installed ? "<standard_session_servicedirs/>" : "")
                                 << "<policy context=\"default\"><allow user=\"*\"/>"
                                    "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
                                    "<allow own=\"*\"/></policy></busconfig>\n";
    std::vector<std::string> all = environment;
    all.push_back("DBUS_SESSION_BUS_ADDRESS=" + m_address);
    m_daemon.emplace(ChildOptions{"dbus-daemon",
                                  {"--config-file=" + configuration.string(), "--nofork", "--nopidfile", "--nosyslog"},
                                  all,
                                  directory},
                     log, user);
    if (!WaitForSocket(socket, *m_daemon))
        throw std::runtime_error("The bus doesn't come up: " + log.string());
}

} // namespace Orvik::Tests
