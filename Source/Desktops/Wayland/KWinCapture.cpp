#include "Desktops/Wayland/KWinCapture.h"

#include "Desktops/Wayland/BusDictionary.h"
#include "Desktops/Wayland/BusFunctions.h"
#include "Desktops/Wayland/DesktopPicture.h"
#include "Desktops/Wayland/OutputTransform.h"
#include "Desktops/Wayland/PixelPipe.h"

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace Orvik::Desktops::Wayland
{
namespace
{

constexpr const char* s_service = "org.kde.KWin";
constexpr const char* s_path = "/org/kde/KWin/ScreenShot2";
constexpr const char* s_interface = "org.kde.KWin.ScreenShot2";

constexpr std::uint32_t s_mostPixelsOfASide = 65'535;
/// What a row may have after its pixels.
constexpr std::uint32_t s_greatestPadding = 65'536;
constexpr std::size_t s_mostBytes = std::size_t{2} << 30;

/// The numbers of Qt's formats whose pixels are 4 bytes.
enum class Format : std::uint32_t
{
    Rgb32 = 4,
    Argb32 = 5,
    Argb32Premultiplied = 6,
    Rgbx8888 = 16,
    Rgba8888 = 17,
    Rgba8888Premultiplied = 18,
};

/// What KWin says of the picture that it writes.
struct PictureHeader
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t stride = 0; ///< bytes
    bool isRedFirst = false;
};

std::optional<bool> FindIsRedFirst(std::uint32_t format)
{
    switch (static_cast<Format>(format))
    {
    case Format::Rgb32:
    case Format::Argb32:
    case Format::Argb32Premultiplied:
        return false;
    case Format::Rgbx8888:
    case Format::Rgba8888:
    case Format::Rgba8888Premultiplied:
        return true;
    }
    return std::nullopt;
}

/// Nothing if it isn't a picture of a usable size and form.
std::optional<PictureHeader> ReadHeader(sd_bus_message* message)
{
    const BusDictionary values(message);
    PictureHeader header;
    header.width = values.GetNumber("width").value_or(0);
    header.height = values.GetNumber("height").value_or(0);
    header.stride = values.GetNumber("stride").value_or(0);
    const std::optional<bool> isRedFirst = FindIsRedFirst(values.GetNumber("format").value_or(0));
    const bool isUsable = values.GetText("type") == "raw" && isRedFirst && header.width > 0 &&
                          header.width <= s_mostPixelsOfASide && header.height > 0 &&
                          header.height <= s_mostPixelsOfASide && header.stride >= header.width * s_pixelBytes &&
                          header.stride <= header.width * s_pixelBytes + s_greatestPadding &&
                          std::size_t{header.stride} * header.height <= s_mostBytes;
    if (!isUsable)
        return std::nullopt;
    header.isRedFirst = *isRedFirst;
    return header;
}

void SwapRedAndBlue(unsigned char* pixels, std::size_t count)
{
    for (std::size_t byte = 0; byte < count * s_pixelBytes; byte += s_pixelBytes)
        std::swap(pixels[byte], pixels[byte + 2]);
}

bool AppendArguments(sd_bus_message* call, const std::string& name, int descriptor)
{
    return call != nullptr && GetBusFunctions().setAutoStart(call, 0) >= 0 &&
           GetBusFunctions().append(call, "sa{sv}h", name.c_str(), 2, "include-cursor", "b", 0, "native-resolution",
                                    "b", 1, descriptor) >= 0;
}

CaptureAnswer JudgeError(const BusReply& reply)
{
    if (reply.IsMissing())
        return {CaptureOutcome::NotOffered, "KWin's ScreenShot2 isn't there"};
    if (reply.errorName == "org.kde.KWin.ScreenShot2.Error.NoAuthorized")
        return {CaptureOutcome::NotOffered,
                "KWin gives this program no pictures: install its desktop entry, with this program's own path at "
                "'Exec=' and with 'X-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2', in "
                "~/.local/share/applications or /usr/share/applications"};
    return {CaptureOutcome::Failed, "KWin takes no picture: " + reply.errorText};
}

} // namespace

bool KWinCapture::IsOffered()
{
    // A start has to be over within two seconds, even if nothing answers.
    constexpr std::int64_t limit = 500'000'000;
    std::string ignored;
    const std::unique_ptr<SessionBus> bus = SessionBus::Open(m_interrupt, ignored);
    if (bus == nullptr)
        return false;
    const BusMessage call = bus->MakeCall(s_service, s_path, "org.freedesktop.DBus.Properties", "Get");
    if (call == nullptr || GetBusFunctions().setAutoStart(call.get(), 0) < 0 ||
        GetBusFunctions().append(call.get(), "ss", s_interface, "Version") < 0)
        return false;
    return bus->Call(call, limit).message != nullptr;
}

CaptureAnswer KWinCapture::Capture(const CapturedOutput& output, unsigned char* target)
{
    CaptureAnswer answer;
    const std::unique_ptr<SessionBus> bus = SessionBus::Open(m_interrupt, answer.reason);
    if (bus == nullptr)
        return answer;
    PixelPipe pipe;
    BusMessage call = bus->MakeCall(s_service, s_path, s_interface, "CaptureScreen");
    if (!pipe.IsOpen() || !AppendArguments(call.get(), output.name, pipe.GetWriteEnd()))
        return {CaptureOutcome::Failed, "KWin can't be asked for a picture"};
    pipe.GiveWriteEndAway();
    const BusReply reply = bus->Call(call, m_patience);
    call.reset(); // holds the pipe's other end, too
    if (reply.message == nullptr)
        return JudgeError(reply);
    const std::optional<PictureHeader> header = ReadHeader(reply.message.get());
    if (!header)
        return {CaptureOutcome::Failed, "KWin's picture has an unknown form"};
    std::vector<unsigned char> picture(std::size_t{header->stride} * header->height);
    if (const Failure failure = pipe.Read(picture.data(), picture.size(), m_patience, m_interrupt))
        return {CaptureOutcome::Failed, "KWin takes no picture: " + *failure};
    // It is the output's own, but a scale that is a fraction may leave it a pixel off.
    CapturedOutput whole = output;
    whole.logical = {0, 0, static_cast<std::int32_t>(output.width), static_cast<std::int32_t>(output.height)};
    whole.desktop = whole.logical;
    if (!CutOutput({picture.data(), header->width, header->height, static_cast<std::ptrdiff_t>(header->stride)}, whole,
                   target))
        return {CaptureOutcome::Failed, "KWin's picture isn't of the display's size"};
    if (header->isRedFirst)
        SwapRedAndBlue(target, std::size_t{output.width} * output.height);
    return {CaptureOutcome::Taken, {}};
}

} // namespace Orvik::Desktops::Wayland
