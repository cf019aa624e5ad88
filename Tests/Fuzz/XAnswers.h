#pragma once

#include "Tests/Fuzz/Targets.h"
#include "Tests/Fuzz/XPacket.h"

#include <map>
#include <optional>
#include <string>

namespace Orvik::Fuzz
{

/// The ids that the server gives out.
struct XIds
{
    static constexpr std::uint32_t s_root = 0x20;
    static constexpr std::uint32_t s_colourMap = 0x21;
    static constexpr std::uint32_t s_foreignWindow = 0x22;
    static constexpr std::uint32_t s_firstVisual = 0x30;
    static constexpr std::uint32_t s_firstOwn = 0x1000'0000; ///< of what the client makes
    static constexpr std::uint32_t s_output = 0x40;
    static constexpr std::uint32_t s_crtc = 0x41;
    static constexpr std::uint32_t s_mode = 0x42;
};

/// The numbers of the extensions' requests.
struct XExtensions
{
    static constexpr std::uint8_t s_shape = 129;
    static constexpr std::uint8_t s_sharedMemory = 130;
    static constexpr std::uint8_t s_input = 131;
    static constexpr std::uint8_t s_test = 132;
    static constexpr std::uint8_t s_fixes = 138;
    static constexpr std::uint8_t s_randr = 140;
};

constexpr std::uint8_t s_firstInputEvent = 66; ///< of XInput's first version
constexpr std::uint16_t s_screenWidth = 64;
constexpr std::uint16_t s_screenHeight = 48;

/// A request of the client.
class XRequest
{
public:
    explicit XRequest(Bytes bytes) : m_bytes(bytes) {}

    [[nodiscard]] std::uint8_t GetMajor() const { return m_bytes[0]; }
    [[nodiscard]] std::uint8_t GetMinor() const { return m_bytes[1]; }

    /// 0 beyond the end.
    template <typename Value>
    [[nodiscard]] Value Get(std::size_t place) const
    {
        return ReadValue<Value>(m_bytes, place);
    }
    [[nodiscard]] std::string GetText(std::size_t place, std::size_t bytes) const;

private:
    Bytes m_bytes;
};

/// The client's part of the server.
struct XClientState
{
    std::uint32_t window = XIds::s_foreignWindow;
    std::map<std::string, std::uint32_t> atoms;
};

/// What a server says when a connection begins.
[[nodiscard]] std::vector<std::uint8_t> MakeSetup();

/// The answer of a sound server with one display; empty for a request without one.
[[nodiscard]] std::optional<XPacket> MakeAnswer(const XRequest& request, XClientState& state);

/// Whether the answer may be another each time. Xlib keeps the other answers for the life of the connection.
[[nodiscard]] bool IsAskedAgain(const XRequest& request);

/// Whether the answer may have any length. Of the others Xlib has to be left with nothing when it has read what the
/// answer's numbers say: else it ends the process.
[[nodiscard]] bool HasFreeLength(const XRequest& request);

/// Mends what Xlib and its extensions believe: numbers of things that follow. With others they read too far or end the
/// process, and no program can look at an answer before they do.
void MendCounts(const XRequest& request, XPacket& answer);

/// A class of an input device with such contents, for the end of an answer or of an event.
void AddDeviceClass(XPacket& packet, Reader& script);

/// The answer to the question for the input devices.
[[nodiscard]] XPacket MakeDevices(Reader& script);

} // namespace Orvik::Fuzz
