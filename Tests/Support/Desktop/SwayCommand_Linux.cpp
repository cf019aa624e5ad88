#include "Tests/Support/Desktop/SwayCommand.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace Orvik::Tests
{
namespace
{

/// Before the length and the type of what follows.
constexpr std::array<char, 6> s_mark = {'i', '3', '-', 'i', 'p', 'c'};
constexpr std::size_t s_headBytes = s_mark.size() + 2 * sizeof(std::uint32_t);

/// A connection of its own to sway.
class SwaySocket
{
public:
    explicit SwaySocket(const std::string& path) : m_socket(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        constexpr timeval limit = {60, 0};
        setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
        m_isOpen = connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    }
    ~SwaySocket() { close(m_socket); }
    SwaySocket(const SwaySocket&) = delete;
    SwaySocket& operator=(const SwaySocket&) = delete;

    [[nodiscard]] bool IsOpen() const { return m_isOpen; }

    [[nodiscard]] bool Send(const std::string& bytes) const
    {
        return send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
    }

    [[nodiscard]] bool Receive(std::string& bytes) const
    {
        return recv(m_socket, bytes.data(), bytes.size(), MSG_WAITALL) == static_cast<ssize_t>(bytes.size());
    }

private:
    int m_socket;
    bool m_isOpen = false;
};

std::string FindSocket(const std::filesystem::path& runtime)
{
    for (const auto& entry : std::filesystem::directory_iterator(runtime))
        if (entry.path().filename().string().starts_with("sway-ipc."))
            return entry.path().string();
    return {};
}

/// A command to run has the type 0.
std::string MakeMessage(const std::string& command)
{
    std::string message(s_headBytes, '\0');
    const auto bytes = static_cast<std::uint32_t>(command.size());
    std::memcpy(message.data(), s_mark.data(), s_mark.size());
    std::memcpy(message.data() + s_mark.size(), &bytes, sizeof(bytes));
    return message + command;
}

} // namespace

bool CommandSway(const std::filesystem::path& runtime, const std::string& command)
{
    const SwaySocket sway(FindSocket(runtime));
    std::string head(s_headBytes, '\0');
    if (!sway.IsOpen() || !sway.Send(MakeMessage(command)) || !sway.Receive(head))
        return false;
    std::uint32_t bytes = 0;
    std::memcpy(&bytes, head.data() + s_mark.size(), sizeof(bytes));
    std::string answer(bytes, '\0');
    return sway.Receive(answer) && answer.find("true") != std::string::npos &&
           answer.find("false") == std::string::npos;
}

} // namespace Orvik::Tests
