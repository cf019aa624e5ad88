#pragma once

// For tests: what stands between a client and its X server and hands on bytes alone, as relays between containers do.

#include "Systems/Linux/FileDescriptor.h"

#include <array>
#include <cstddef>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace Orvik::Tests
{

/// Takes one connection and hands on its bytes both ways, but no descriptor that comes with them. It goes on with that
/// until one of the two closes it, also without the object.
class XRelay
{
public:
    /// `serverName` is what belongs into `DISPLAY` for the server, such as ":7".
    explicit XRelay(const std::string& serverName)
        : m_name(":" + std::to_string(s_firstNumber + getpid())), m_path(GetSocketPath(m_name))
    {
        const sockaddr_un own = MakeAddress(m_path);
        FileDescriptor listener = MakeSocket();
        if (bind(listener.Get(), reinterpret_cast<const sockaddr*>(&own), sizeof(own)) != 0 ||
            listen(listener.Get(), 1) != 0)
            throw std::runtime_error("The relay can't listen.");
        std::thread([listener = std::move(listener), server = MakeAddress(GetSocketPath(serverName))]
                    { Work(listener, server); })
            .detach();
    }
    ~XRelay() { unlink(m_path.c_str()); }
    XRelay(const XRelay&) = delete;
    XRelay& operator=(const XRelay&) = delete;

    [[nodiscard]] const std::string& GetName() const { return m_name; }

private:
    using FileDescriptor = Systems::FileDescriptor;

    static constexpr int s_firstNumber = 100'000; // above those that servers take

    [[nodiscard]] static std::string GetSocketPath(const std::string& name)
    {
        return "/tmp/.X11-unix/X" + name.substr(1);
    }

    [[nodiscard]] static FileDescriptor MakeSocket() { return FileDescriptor(socket(AF_UNIX, SOCK_STREAM, 0)); }

    [[nodiscard]] static sockaddr_un MakeAddress(const std::string& path)
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        return address;
    }

    /// False once there is no more.
    [[nodiscard]] static bool HandOn(int from, int to)
    {
        std::array<char, 65536> bytes = {};
        const ssize_t count = read(from, bytes.data(), bytes.size());
        ssize_t written = 0;
        while (written < count)
        {
            const ssize_t result = write(to, bytes.data() + written, static_cast<std::size_t>(count - written));
            if (result <= 0)
                return false;
            written += result;
        }
        return count > 0;
    }

    static void Work(const FileDescriptor& listener, const sockaddr_un& address)
    {
        const FileDescriptor client(accept(listener.Get(), nullptr, nullptr));
        const FileDescriptor server = MakeSocket();
        if (connect(server.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
            return;
        std::array<pollfd, 2> ends = {{{client.Get(), POLLIN, 0}, {server.Get(), POLLIN, 0}}};
        while (poll(ends.data(), ends.size(), -1) > 0)
        {
            if (ends[0].revents != 0 && !HandOn(client.Get(), server.Get()))
                return;
            if (ends[1].revents != 0 && !HandOn(server.Get(), client.Get()))
                return;
        }
    }

    std::string m_name;
    std::string m_path;
};

} // namespace Orvik::Tests
