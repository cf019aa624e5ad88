#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// What a `CaptureServer` does with one request for a frame.
enum class FrameAnswer : std::uint8_t
{
    Ready,    ///< copies the picture
    Changed,  ///< says the constraints of the next kind, and that the buffer is of another
    Outdated, ///< says that the buffer is of another kind, and no new constraints
    Stopped,
    StoppedSession, ///< stops the session and leaves the frame without an answer
    Unknown,
    None,
};

struct CaptureServerOptions
{
    int width = 64; ///< of the display as its user sees it, pixels
    int height = 48;
    std::uint32_t transform = 0; ///< one of `wl_output_transform`
    /// Kinds of pictures, each a list of formats in the order of preference: the first, and then the next with each
    /// change.
    std::vector<std::vector<std::uint32_t>> kinds = {{1}};
    /// To frames in their order; the last stands for all that follow.
    std::vector<FrameAnswer> answers = {FrameAnswer::Ready};
    bool hasSources = true;       ///< of outputs
    bool refusesSessions = false; ///< each is stopped at once
    bool answersSessions = true;  ///< says constraints at all
    int frameWidth = 0;           ///< of what the display scans, if it isn't that of its mode
};

/// A compositor with one display, whose picture ext-image-copy-capture gives, and with nothing else. Each frame that
/// becomes ready has another picture: `MakePicture` says which. It holds its clients to the protocol's order, and
/// copies only what they say is damaged. It runs on a thread of its own until the object goes.
class CaptureServer
{
public:
    /// Throws `std::runtime_error` if it can't be made. The socket is in the folder.
    CaptureServer(const std::string& folder, const CaptureServerOptions& options);
    ~CaptureServer();
    CaptureServer(const CaptureServer&) = delete;
    CaptureServer& operator=(const CaptureServer&) = delete;

    /// What belongs into `WAYLAND_DISPLAY`.
    [[nodiscard]] const std::string& GetSocket() const { return m_socket; }

    /// The display as its user sees it in the frame with that number, from 1: each pixel is a colour of its own.
    [[nodiscard]] Picture MakePicture(unsigned frame) const;

private:
    class Server;

    CaptureServerOptions m_options;
    std::string m_socket;
    std::unique_ptr<Server> m_server;
};

} // namespace Orvik::Tests
