#include "Tests/Fuzz/Receive.h"

#include <array>
#include <cstring>
#include <sys/socket.h>
#include <unistd.h>

namespace Orvik::Fuzz
{
namespace
{

void CloseDescriptors(msghdr& header)
{
    for (cmsghdr* each = CMSG_FIRSTHDR(&header); each != nullptr; each = CMSG_NXTHDR(&header, each))
        for (std::size_t place = 0; CMSG_LEN(place + sizeof(int)) <= each->cmsg_len; place += sizeof(int))
        {
            int descriptor = -1;
            std::memcpy(&descriptor, CMSG_DATA(each) + place, sizeof(int));
            close(descriptor);
        }
}

} // namespace

bool Receive(int socket, int flags, std::vector<std::uint8_t>& bytes)
{
    constexpr std::size_t mostDescriptors = 28; // that libwayland sends at once, the more of both clients
    std::array<std::uint8_t, 65536> received = {};
    std::array<char, CMSG_SPACE(mostDescriptors * sizeof(int))> control = {};
    iovec part = {received.data(), received.size()};
    msghdr header = {};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = control.data();
    header.msg_controllen = control.size();
    const ssize_t count = recvmsg(socket, &header, MSG_CMSG_CLOEXEC | flags);
    if (count <= 0)
        return false;
    CloseDescriptors(header);
    bytes.insert(bytes.end(), received.data(), received.data() + count);
    return true;
}

} // namespace Orvik::Fuzz
