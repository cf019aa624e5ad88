#include "Tests/Support/Desktop/WaitForSocket.h"

#include <chrono>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace Orvik::Tests
{
namespace
{

/// That the file is there doesn't say that the server listens already.
bool TakesConnections(const std::string& file)
{
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    file.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const bool isTaken = connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    close(connection);
    return isTaken;
}

} // namespace

bool WaitForSocket(const std::filesystem::path& file, ProcessFamily& family)
{
    // Far above what a start takes, on a busy machine too.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!TakesConnections(file.string()))
    {
        if (!family.IsRunning() || std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

} // namespace Orvik::Tests
