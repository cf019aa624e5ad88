#include "Tests/Fuzz/HostileServer.h"

#include "Tests/Fuzz/Receive.h"

#include <X11/X.h>
#include <X11/Xproto.h>
#include <X11/extensions/XI2.h>
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace Orvik::Fuzz
{
namespace
{

constexpr int s_firstDisplay = 200'000; // above those that servers take

/// A name without a file: it goes with the process, however that ends.
Systems::FileDescriptor Listen(int display)
{
    const std::string name = "/tmp/.X11-unix/X" + std::to_string(display);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    name.copy(address.sun_path + 1, sizeof(address.sun_path) - 1);
    const auto bytes = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    Systems::FileDescriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    Require(bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), bytes) == 0 &&
                listen(listener.Get(), 1) == 0,
            "a server can listen");
    return listener;
}

} // namespace

HostileServer::HostileServer() : m_listener(Listen(s_firstDisplay + getpid())), m_script(Bytes())
{
    setenv("DISPLAY", (":" + std::to_string(s_firstDisplay + getpid())).c_str(), 1);
    m_thread = std::thread([this] { Run(); });
}

HostileServer::~HostileServer()
{
    shutdown(m_listener.Get(), SHUT_RDWR);
    m_thread.join();
}

void HostileServer::SetScript(Bytes script)
{
    const std::lock_guard lock(m_mutex);
    m_script = Reader(script);
    m_failsIn = 0;
}

bool HostileServer::HasScript()
{
    const std::lock_guard lock(m_mutex);
    return !m_script.IsAtEnd();
}

void HostileServer::Run()
{
    // The fuzzer's alarm is for the thread of the inputs: here it would interrupt a call.
    sigset_t signals;
    sigfillset(&signals);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_client = Systems::FileDescriptor(accept(m_listener.Get(), nullptr, nullptr));
    while (Receive(m_client.Get(), 0, m_heard))
    {
        const std::lock_guard lock(m_mutex);
        if (!m_isSetUp && !TakeSetup())
            continue;
        while (TakeRequest())
        {
        }
        Send();
    }
}

/// False if the program has gone.
bool HostileServer::TakeSetup()
{
    const XRequest setup(m_heard);
    const auto pad = [](std::size_t bytes) { return (bytes + 3) / 4 * 4; };
    constexpr std::size_t headBytes = 12;
    const std::size_t bytes = headBytes + pad(setup.Get<std::uint16_t>(6)) + pad(setup.Get<std::uint16_t>(8));
    if (m_heard.size() < bytes)
        return false;
    m_heard.erase(m_heard.begin(), m_heard.begin() + static_cast<std::ptrdiff_t>(bytes));
    m_said = MakeSetup();
    m_isSetUp = true;
    return true;
}

bool HostileServer::TakeRequest()
{
    const std::size_t bytes = std::size_t{XRequest(m_heard).Get<std::uint16_t>(2)} * 4;
    if (bytes == 0 || m_heard.size() < bytes)
        return false;
    ++m_sequence;
    Handle(XRequest(Bytes(m_heard).first(bytes)));
    m_heard.erase(m_heard.begin(), m_heard.begin() + static_cast<std::ptrdiff_t>(bytes));
    return true;
}

void HostileServer::Handle(const XRequest& request)
{
    NoteWindow(request);
    if (std::optional<XPacket> answer = MakeAnswer(request, m_state))
    {
        Answer(request, std::move(*answer));
        return;
    }
    if (m_failsIn == 0 || --m_failsIn > 0)
        return;
    XPacket error(XPacket::s_error);
    error.Set(1, m_failure);
    error.Set(10, request.GetMajor());
    Append(error, m_sequence);
}

void HostileServer::NoteWindow(const XRequest& request)
{
    if (request.GetMajor() == X_CreateWindow)
        m_state.window = request.Get<std::uint32_t>(4);
}

void HostileServer::Answer(const XRequest& request, XPacket answer)
{
    if (!IsAskedAgain(request) || m_script.IsAtEnd())
    {
        Append(answer, m_sequence);
        return;
    }
    Wish wish = SayPart();
    if (wish.error != 0)
    {
        answer = XPacket(XPacket::s_error);
        answer.Set(1, wish.error);
        answer.Set(4, wish.resource);
        answer.Set(10, request.GetMajor());
        Append(answer, m_sequence);
        return;
    }
    if (request.GetMajor() == XExtensions::s_input) // only whole devices
    {
        Append(wish.devices ? *wish.devices : answer, m_sequence);
        return;
    }
    if (wish.hasLength && HasFreeLength(request))
        answer.Resize(XPacket::s_leastBytes + std::size_t{wish.sixteens} * 16);
    for (const Wish::Change& change : wish.changes)
    {
        constexpr std::size_t first = 8;
        if (change.bytes == 1)
            answer.Set(1, static_cast<std::uint8_t>(change.value));
        else if (change.bytes == 2)
            answer.Set(first + std::size_t{change.place} * 2, static_cast<std::uint16_t>(change.value));
        else
            answer.Set(first + std::size_t{change.place} * 4, change.value);
    }
    MendCounts(request, answer);
    Append(answer, m_sequence);
}

void HostileServer::Append(XPacket& packet, std::uint16_t sequence)
{
    const std::vector<std::uint8_t>& bytes = packet.Finish(sequence);
    m_said.insert(m_said.end(), bytes.begin(), bytes.end());
}

void HostileServer::Send()
{
    std::size_t sent = 0;
    while (sent < m_said.size())
    {
        const ssize_t count = send(m_client.Get(), m_said.data() + sent, m_said.size() - sent, MSG_NOSIGNAL);
        if (count <= 0)
            break;
        sent += static_cast<std::size_t>(count);
    }
    m_said.clear();
}

/// A byte; one of the ids that mean something; or after 0xFF four bytes.
std::uint32_t HostileServer::TakeValue()
{
    const std::uint8_t byte = m_script.TakeByte();
    switch (byte)
    {
    case 0xFF:
        return static_cast<std::uint32_t>(m_script.TakeNumber());
    case 0xFE:
        return m_state.window;
    case 0xFD:
        return XIds::s_root;
    default:
        return byte;
    }
}

HostileServer::Wish HostileServer::SayPart()
{
    Wish wish;
    while (!m_script.IsAtEnd())
    {
        switch (m_script.TakeByte())
        {
        case 'S':
            return wish;
        case 'E':
            SayEvent();
            break;
        case 'B':
            SayDeviceEvent();
            break;
        case 'C':
            SayDeviceChange();
            break;
        case 'G':
            SayGenericEvent();
            break;
        case 'K': // a request without an answer fails
            m_failsIn = m_script.TakeByte();
            m_failure = m_script.TakeByte();
            break;
        case 'F':
            wish.error = m_script.TakeByte();
            wish.resource = TakeValue();
            break;
        case 'D':
            wish.changes.push_back({1, 0, m_script.TakeByte()});
            break;
        case 'Q':
            wish.changes.push_back({2, m_script.TakeByte(), m_script.TakeWord()});
            break;
        case 'P':
        {
            const std::uint8_t place = m_script.TakeByte();
            wish.changes.push_back({4, place, TakeValue()});
            break;
        }
        case 'L':
            wish.hasLength = true;
            wish.sixteens = m_script.TakeByte();
            break;
        case 'V':
            wish.devices = MakeDevices(m_script);
            break;
        default:
            break;
        }
    }
    return wish;
}

/// The type, its detail, and seven words. Left out are the events of XInput's first version: of those that its library
/// doesn't know in that place it queues what was in the memory before.
void HostileServer::SayEvent()
{
    const std::uint8_t type = m_script.TakeByte();
    constexpr std::uint8_t sent = 0x80;
    const std::uint8_t plain = type & ~sent;
    constexpr std::uint8_t inputEvents = 17;
    const bool isInput = plain >= s_firstInputEvent && plain < s_firstInputEvent + inputEvents;
    const bool isEvent = plain > XPacket::s_answer && plain != XPacket::s_genericEvent && !isInput;
    XPacket event(isEvent ? type : static_cast<std::uint8_t>(ClientMessage));
    event.Set(1, m_script.TakeByte());
    for (std::size_t place = 4; place < XPacket::s_leastBytes; place += 4)
        event.Set(place, TakeValue());
    Append(event, static_cast<std::uint16_t>(m_sequence - 1));
}

/// What a pointer does, with as many masks and values as the event says: XInput's library believes it.
void HostileServer::SayDeviceEvent()
{
    XPacket event(XPacket::s_genericEvent, 80);
    event.Set(1, XExtensions::s_input);
    event.Set<std::uint16_t>(8, static_cast<std::uint16_t>(XI_KeyPress + m_script.TakeByte() % 5));
    event.Set<std::uint16_t>(52, m_script.TakeByte()); // the source
    event.Set(56, TakeValue());                        // flags
    event.Set(16, TakeValue());                        // the button
    event.Set(24, TakeValue());                        // the window
    for (std::size_t place = 32; place < 48; place += 4)
        event.Set(place, TakeValue());
    const std::uint16_t buttons = m_script.TakeByte() % 4;
    const std::uint16_t masks = m_script.TakeByte() % 4;
    event.Set(48, buttons);
    event.Set(50, masks);
    for (int left = buttons + masks; left > 0; --left)
        event.Add(TakeValue());
    for (std::size_t left = std::size_t{masks} * 32 * 2; left > 0; --left)
        event.Add(m_script.IsAtEnd() ? 0 : TakeValue());
    Append(event, static_cast<std::uint16_t>(m_sequence - 1));
}

void HostileServer::SayDeviceChange()
{
    XPacket event(XPacket::s_genericEvent);
    event.Set(1, XExtensions::s_input);
    event.Set<std::uint16_t>(8, XI_DeviceChanged);
    event.Set<std::uint16_t>(18, m_script.TakeByte()); // the source
    const std::uint16_t classes = m_script.TakeByte() % 5;
    event.Set(16, classes);
    for (int left = classes; left > 0; --left)
        AddDeviceClass(event, m_script);
    Append(event, static_cast<std::uint16_t>(m_sequence - 1));
}

/// Any extension's event of any kind and length. Those of XInput that have lists have empty ones here; and they are of
/// known kinds, because Xlib queues others without data and faults at a look at them. It counts extensions by seven
/// bits.
void HostileServer::SayGenericEvent()
{
    XPacket event(XPacket::s_genericEvent);
    std::uint8_t extension = m_script.TakeByte();
    std::uint8_t kind = m_script.TakeByte();
    for (std::size_t place = 12; place < XPacket::s_leastBytes; place += 4)
        event.Set(place, TakeValue());
    for (int left = m_script.TakeByte(); left > 0; --left)
        event.Add(m_script.IsAtEnd() ? 0 : TakeValue());
    if ((extension | 0x80) == XExtensions::s_input)
    {
        constexpr std::uint8_t lastKind = 32; // the end of a pinch
        constexpr std::size_t longestHead = 128;
        extension = XExtensions::s_input;
        kind = 1 + kind % lastKind;
        event.Grow(longestHead);
        for (const std::size_t place : {16, 20, 22, 48, 50}) // where one or another kind has a count
            event.Set<std::uint16_t>(place, 0);
    }
    event.Set(1, extension);
    event.Set<std::uint16_t>(8, kind);
    Append(event, static_cast<std::uint16_t>(m_sequence - 1));
}

} // namespace Orvik::Fuzz
