#include "Tests/Support/Desktop/ServerResources.h"

#include "Tests/Support/Desktop/XSession.h"

#include <X11/Xlib-xcb.h>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <xcb/xcbext.h>

namespace Orvik::Tests
{
namespace
{

xcb_extension_t s_resourceExtension = {"X-Resource", 0};

/// QueryClientResources; the library fills in the first word.
struct ResourceQuestion
{
    std::uint32_t header = 0;
    std::uint32_t client = 0; ///< any identifier of its
};

/// It is followed by pairs of a type and its count.
struct ResourceAnswer
{
    std::uint32_t header = 0;
    std::uint32_t length = 0;
    std::uint32_t types = 0;
    std::array<std::uint32_t, 5> padding = {};
};

} // namespace

unsigned int CountServerResources(const XSession& session, unsigned long window)
{
    xcb_connection_t* const connection = XGetXCBConnection(session.GetDisplay());
    const xcb_query_extension_reply_t* const extension = xcb_get_extension_data(connection, &s_resourceExtension);
    if (window == 0 || extension == nullptr || extension->present == 0)
        return 0;
    ResourceQuestion question{.client = static_cast<std::uint32_t>(window)};
    constexpr xcb_protocol_request_t request = {1, &s_resourceExtension, 2, 0};
    std::array<iovec, 3> parts = {}; // the library uses the first two itself
    parts[2] = {&question, sizeof(question)};
    const unsigned int number = xcb_send_request(connection, XCB_REQUEST_CHECKED, &parts[2], &request);
    xcb_generic_error_t* error = nullptr;
    const std::unique_ptr<void, decltype(&std::free)> reply(xcb_wait_for_reply(connection, number, &error), &std::free);
    std::free(error);
    if (reply == nullptr)
        return 0;
    ResourceAnswer answer;
    std::memcpy(&answer, reply.get(), sizeof(answer));
    unsigned int count = 0;
    for (std::uint32_t type = 0; type < answer.types; ++type)
    {
        std::array<std::uint32_t, 2> pair = {};
        std::memcpy(pair.data(), static_cast<const char*>(reply.get()) + sizeof(answer) + type * sizeof(pair),
                    sizeof(pair));
        count += pair[1];
    }
    return count;
}

} // namespace Orvik::Tests
