// A compositor that says anything, to all that listens to one.
#include "Core/System/Desktop/PixelSurface.h"
#include "Core/System/Desktop/Window.h"
#include "Desktops/Wayland/WaylandDesktop.h"
#include "Tests/Fuzz/Receive.h"
#include "Tests/Fuzz/Targets.h"
#include "Tests/Support/NullDesktop.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/mman.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace Orvik::Fuzz
{
namespace
{

constexpr std::array<const char*, 20> s_interfaces = {
    "wl_compositor",
    "wl_shm",
    "wl_seat",
    "wl_output",
    "xdg_wm_base",
    "zwlr_layer_shell_v1",
    "zxdg_output_manager_v1",
    "wp_viewporter",
    "wp_fractional_scale_manager_v1",
    "zwlr_screencopy_manager_v1",
    "ext_image_copy_capture_manager_v1",
    "ext_output_image_capture_source_manager_v1",
    "zwp_linux_dmabuf_v1",
    "zwp_pointer_constraints_v1",
    "zwp_relative_pointer_manager_v1",
    "zwp_keyboard_shortcuts_inhibit_manager_v1",
    "wl_data_device_manager",
    "",
    "wl_subcompositor",
    "zwp_tablet_manager_v2",
};

/// What the protocol's messages are made of.
class Message
{
public:
    Message(std::uint32_t object, std::uint32_t opcode) : m_words{object, opcode} {}

    void Add(std::uint32_t word) { m_words.push_back(word); }
    void Add(const char* text)
    {
        const std::size_t bytes = std::strlen(text) + 1;
        Add(static_cast<std::uint32_t>(bytes));
        const std::size_t first = m_words.size();
        m_words.resize(first + (bytes + 3) / 4);
        std::memcpy(&m_words[first], text, bytes);
    }

    [[nodiscard]] const std::vector<std::uint32_t>& Finish()
    {
        m_words[1] |= static_cast<std::uint32_t>(m_words.size() * 4) << 16;
        return m_words;
    }

private:
    std::vector<std::uint32_t> m_words;
};

/// The other end of the connection. A script says what it says: a part of it before the answer to each question whether
/// all is handled, and one whenever nothing else happens. At its end the connection is closed.
class Compositor
{
public:
    Compositor(int socket, Bytes script) : m_socket(socket), m_script(script) {}

    void Run()
    {
        constexpr int patience = 3; // milliseconds
        while (!m_script.IsAtEnd())
        {
            pollfd end = {m_socket, POLLIN, 0};
            if (poll(&end, 1, patience) > 0)
            {
                if (!Read())
                    break;
            }
            else
            {
                SayPart();
                Flush();
            }
        }
        close(m_socket);
    }

private:
    /// False if the program has gone.
    bool Read()
    {
        if (!Receive(m_socket, MSG_DONTWAIT, m_requests))
            return false;
        while (TakeRequest())
        {
        }
        return true;
    }

    bool TakeRequest()
    {
        std::array<std::uint32_t, 3> words = {};
        if (m_requests.size() < 8)
            return false;
        std::memcpy(words.data(), m_requests.data(), std::min(sizeof(words), m_requests.size()));
        const std::size_t bytes = std::max<std::size_t>(words[1] >> 16, 8);
        if (m_requests.size() < bytes)
            return false;
        m_requests.erase(m_requests.begin(), m_requests.begin() + static_cast<std::ptrdiff_t>(bytes));
        constexpr std::uint32_t display = 1;
        const std::uint32_t opcode = words[1] & 0xFFFF;
        if (words[0] == display && opcode == 0)
            AnswerSync(words[2]);
        if (words[0] == display && opcode == 1)
            m_registry = words[2];
        return true;
    }

    void Append(Message& message)
    {
        const std::vector<std::uint32_t>& words = message.Finish();
        m_said.insert(m_said.end(), words.begin(), words.end());
    }

    /// What belongs together comes at once, so that the same script means the same numbers of objects each time.
    void Flush(int descriptor = -1)
    {
        if (m_said.empty())
            return;
        iovec part = {m_said.data(), m_said.size() * 4};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control = {};
        msghdr header = {};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        if (descriptor >= 0)
        {
            header.msg_control = control.data();
            header.msg_controllen = control.size();
            cmsghdr* const first = CMSG_FIRSTHDR(&header);
            first->cmsg_level = SOL_SOCKET;
            first->cmsg_type = SCM_RIGHTS;
            first->cmsg_len = CMSG_LEN(sizeof(int));
            std::memcpy(CMSG_DATA(first), &descriptor, sizeof(int));
        }
        static_cast<void>(sendmsg(m_socket, &header, MSG_NOSIGNAL | MSG_DONTWAIT));
        m_said.clear();
    }

    void AnswerSync(std::uint32_t callback)
    {
        SayPart();
        Message done(callback, 0);
        done.Add(0U);
        Append(done);
        Message gone(1, 1);
        gone.Add(callback);
        Append(gone);
        Flush();
    }

    void SayPart()
    {
        while (!m_script.IsAtEnd())
        {
            const std::uint8_t kind = m_script.TakeByte();
            if (kind == 'S')
                return;
            if (kind == 'G')
                Announce();
            else if (kind == 'K')
                SayKeymap();
            else
                Say(kind);
        }
    }

    void Announce()
    {
        Message global(m_registry, 0);
        global.Add(++m_names);
        global.Add(s_interfaces[m_script.TakeByte() % s_interfaces.size()]);
        global.Add(std::uint32_t{m_script.TakeByte()} % 10);
        Append(global);
    }

    /// The object, the event, the number of words, and those: a byte each, or after 0xFF four.
    void Say(std::uint8_t object)
    {
        const std::uint8_t opcode = m_script.TakeByte() % 16;
        constexpr std::uint8_t display = 1;
        Message event(object, opcode);
        for (int words = m_script.TakeByte() % 12; words > 0; --words)
        {
            const std::uint8_t word = m_script.TakeByte();
            event.Add(word == 0xFF ? static_cast<std::uint32_t>(m_script.TakeNumber()) : word);
        }
        if (object != display || opcode == 0) // the library believes what is said of its numbers
            Append(event);
    }

    /// A keymap for the object: its format, what is said of its size, and its bytes.
    void SayKeymap()
    {
        const std::uint8_t keyboard = m_script.TakeByte();
        const int memory = memfd_create("keymap", MFD_CLOEXEC);
        const std::uint32_t said = m_script.TakeWord();
        const std::size_t bytes = std::min<std::size_t>(m_script.TakeWord(), m_script.GetRest().size());
        static_cast<void>(!write(memory, m_script.GetRest().data(), bytes));
        Message keymap(keyboard, 0);
        keymap.Add(1U);
        keymap.Add(said);
        Flush();
        Append(keymap);
        Flush(memory);
        close(memory);
    }

    int m_socket;
    Reader m_script;
    std::vector<std::uint8_t> m_requests;
    std::vector<std::uint32_t> m_said; ///< and not yet sent
    std::uint32_t m_registry = 2;
    std::uint32_t m_names = 0;
};

/// What a run does on a compositor, as far as that goes.
void UseDesktop(Desktops::Wayland::WaylandDesktop& desktop)
{
    constexpr System::Math::Rectangle region = {0, 0, 64, 48};
    constexpr int steps = 8;
    static_cast<void>(desktop.ListDisplays());
    System::Desktop::Window window(nullptr, "Window", {0, 0}, {64, 48}, System::Desktop::WindowType::Overlay);
    window.SetEventHandler([](const System::Desktop::WindowEvent&) { return false; });
    const bool isCreated = window.Create();
    const std::unique_ptr<Desktops::PixelMemory> memory = desktop.MakePixelMemory();
    if (isCreated)
    {
        window.Show(window.Lock());
        window.BringToFront();
        if (memory->Create(window.GetNativeWindow(), 64, 48) && memory->BeginFrame())
        {
            std::fill_n(memory->GetPixels(), memory->GetStride() * 48, 0xFF112233U);
            const std::array<System::Math::Rectangle, 1> areas = {region};
            memory->Present(areas);
            memory->EndFrame();
        }
    }
    const std::unique_ptr<Desktops::PlatformCaptureContext> capture = desktop.MakeCaptureContext();
    if (capture->Initialize(region) && !capture->CopyScreen())
    {
        std::uint32_t sum = 0;
        const auto pixels = capture->GetPixels();
        for (std::uint64_t index = 0; index < pixels.size; ++index)
            sum += pixels.data[index];
        Require(sum != 1, "every pixel of a capture can be read");
    }
    System::Math::Point position;
    for (int step = 0; step < steps && isCreated; ++step)
    {
        window.Update();
        static_cast<void>(desktop.GetPointer().ReadPosition(position));
    }
}

} // namespace

void HearCompositor(Bytes input)
{
    std::array<int, 2> ends = {};
    Require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0, "there is a pair of sockets");
    setenv("WAYLAND_SOCKET", std::to_string(ends[0]).c_str(), 1); // the library takes it out again
    std::thread compositor([&] { Compositor(ends[1], input).Run(); });
    {
        Desktops::Wayland::WaylandDesktop desktop;
        Desktops::SetDesktop(desktop);
        if (!desktop.Connect())
            UseDesktop(desktop);
    }
    Desktops::SetDesktop(Tests::NullDesktop::GetInstance());
    compositor.join();
}

} // namespace Orvik::Fuzz
