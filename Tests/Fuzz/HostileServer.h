#pragma once

#include "Systems/Linux/FileDescriptor.h"
#include "Tests/Fuzz/XAnswers.h"

#include <mutex>
#include <thread>
#include <vector>

namespace Orvik::Fuzz
{

/// An X server for the one connection of a process, which `DISPLAY` leads to. A script says what is in its answers and
/// what it says unasked: a part of the script before each answer. Without a script it is a sound one.
///
/// The frame of what it says is always right: numbers of requests and lengths. A stream out of step ends a connection,
/// and the process has no second one.
class HostileServer
{
public:
    /// It has to be made before the process connects, and lives as long as the process.
    HostileServer();
    ~HostileServer();
    HostileServer(const HostileServer&) = delete;
    HostileServer& operator=(const HostileServer&) = delete;

    /// Replaces the script; empty for none. The bytes have to stay until the next one.
    void SetScript(Bytes script);

    /// Whether there is more in the script.
    [[nodiscard]] bool HasScript();

private:
    /// What the script wants of the next answer.
    struct Wish
    {
        struct Change
        {
            std::uint8_t bytes; ///< 1, 2 or 4
            std::uint8_t place; ///< counted in those
            std::uint32_t value;
        };

        std::uint8_t error = 0; ///< in place of an answer
        std::uint32_t resource = 0;
        std::vector<Change> changes;
        bool hasLength = false;
        std::uint8_t sixteens = 0; ///< of bytes, after the first 32
        std::optional<XPacket> devices;
    };

    void Run();
    [[nodiscard]] bool TakeSetup();
    [[nodiscard]] bool TakeRequest();
    void Handle(const XRequest& request);
    void Answer(const XRequest& request, XPacket answer);
    void NoteWindow(const XRequest& request);
    void Append(XPacket& packet, std::uint16_t sequence);
    void Send();

    [[nodiscard]] std::uint32_t TakeValue();
    [[nodiscard]] Wish SayPart();
    void SayEvent();
    void SayDeviceEvent();
    void SayDeviceChange();
    void SayGenericEvent();

    Systems::FileDescriptor m_listener;
    Systems::FileDescriptor m_client;
    std::mutex m_mutex; ///< of what a script changes
    Reader m_script;
    XClientState m_state;
    int m_failsIn = 0; ///< so many requests without an answer later, one fails; 0 for none
    std::uint8_t m_failure = 0;
    std::vector<std::uint8_t> m_heard;
    std::vector<std::uint8_t> m_said; ///< and not yet sent
    bool m_isSetUp = false;
    std::uint16_t m_sequence = 0;
    std::thread m_thread;
};

} // namespace Orvik::Fuzz
