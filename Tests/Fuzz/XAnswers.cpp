#include "Tests/Fuzz/XAnswers.h"

#include <X11/X.h>
#include <X11/Xproto.h>
#include <X11/extensions/XI2proto.h>
#include <X11/extensions/XIproto.h>
#include <X11/extensions/randr.h>
#include <X11/extensions/shmproto.h>
#include <algorithm>
#include <array>

namespace Orvik::Fuzz
{
namespace
{

struct Extension
{
    const char* name;
    std::uint8_t major;
    std::uint8_t firstEvent;
    std::uint8_t firstError;
};

// There is no XKEYBOARD: Xlib alone reads its answers, and then looks keys up in the map that the core protocol has.
constexpr std::array<Extension, 6> s_extensions = {{{"SHAPE", XExtensions::s_shape, 64, 0},
                                                    {"MIT-SHM", XExtensions::s_sharedMemory, 65, 128},
                                                    {"XInputExtension", XExtensions::s_input, s_firstInputEvent, 129},
                                                    {"XTEST", XExtensions::s_test, 0, 0},
                                                    {"XFIXES", XExtensions::s_fixes, 87, 140},
                                                    {"RANDR", XExtensions::s_randr, 89, 147}}};

constexpr std::uint32_t s_nameAtom = 39;
constexpr std::uint8_t s_depth = 24;

XPacket MakeWordsAnswer(std::initializer_list<std::uint32_t> words)
{
    XPacket answer(XPacket::s_answer);
    std::size_t place = 8;
    for (const std::uint32_t word : words)
    {
        answer.Grow(place + sizeof(word));
        answer.Set(place, word);
        place += sizeof(word);
    }
    return answer;
}

/// Version numbers of 16 bits each.
XPacket MakeVersion(std::uint16_t major, std::uint16_t minor)
{
    XPacket answer(XPacket::s_answer);
    answer.Set(8, major);
    answer.Set(10, minor);
    return answer;
}

XPacket MakeWindowAttributes()
{
    XPacket answer(XPacket::s_answer, 44);
    answer.Set<std::uint32_t>(8, XIds::s_firstVisual);
    answer.Set<std::uint16_t>(12, InputOutput);
    answer.Set<std::uint8_t>(26, IsViewable);
    return answer;
}

XPacket MakeGeometry()
{
    XPacket answer(XPacket::s_answer);
    answer.Set(1, s_depth);
    answer.Set<std::uint32_t>(8, XIds::s_root);
    answer.Set(16, s_screenWidth);
    answer.Set(18, s_screenHeight);
    return answer;
}

XPacket MakeTree(const XRequest& request, const XClientState& state)
{
    const bool isRoot = request.Get<std::uint32_t>(4) == XIds::s_root;
    XPacket answer = MakeWordsAnswer({XIds::s_root, isRoot ? static_cast<std::uint32_t>(None) : XIds::s_root});
    if (!isRoot)
        return answer;
    answer.Set<std::uint16_t>(16, 2);
    answer.Add(state.window);
    answer.Add(XIds::s_foreignWindow);
    return answer;
}

XPacket MakeAtom(const XRequest& request, XClientState& state)
{
    constexpr std::uint32_t firstFree = 70; // those below have names in the protocol
    const std::string name = request.GetText(8, request.Get<std::uint16_t>(4));
    const auto next = static_cast<std::uint32_t>(firstFree + state.atoms.size());
    return MakeWordsAnswer({state.atoms.emplace(name, next).first->second});
}

XPacket MakeAtomName()
{
    XPacket answer = MakeWordsAnswer({4});
    answer.Resize(XPacket::s_leastBytes + 4);
    answer.Set<std::uint32_t>(XPacket::s_leastBytes, 0x312D5044); // "DP-1"
    return answer;
}

/// A window as the property's value.
XPacket MakeProperty()
{
    constexpr std::uint32_t typeOfWindows = 33;
    XPacket answer = MakeWordsAnswer({typeOfWindows, 0, 1});
    answer.Set<std::uint8_t>(1, 32);
    answer.Add(XIds::s_foreignWindow);
    return answer;
}

XPacket MakePointer()
{
    XPacket answer = MakeWordsAnswer({XIds::s_root});
    answer.Set<std::uint8_t>(1, xTrue);
    answer.Set<std::uint16_t>(16, 20);
    answer.Set<std::uint16_t>(18, 10);
    return answer;
}

XPacket MakeImage(const XRequest& request)
{
    constexpr std::size_t pixelBytes = 4;
    const std::size_t pixels = std::size_t{request.Get<std::uint16_t>(12)} * request.Get<std::uint16_t>(14);
    XPacket answer = MakeWordsAnswer({XIds::s_firstVisual});
    answer.Set(1, s_depth);
    answer.Resize(XPacket::s_leastBytes + pixels * pixelBytes);
    return answer;
}

XPacket MakeExtension(const XRequest& request)
{
    const std::string name = request.GetText(8, request.Get<std::uint16_t>(4));
    XPacket answer(XPacket::s_answer);
    for (const Extension& extension : s_extensions)
        if (name == extension.name)
        {
            answer.Set<std::uint8_t>(8, xTrue);
            answer.Set(9, extension.major);
            answer.Set(10, extension.firstEvent);
            answer.Set(11, extension.firstError);
        }
    return answer;
}

/// One symbol for each key: its own number, which is a letter for many.
XPacket MakeKeys(const XRequest& request)
{
    XPacket answer(XPacket::s_answer);
    answer.Set<std::uint8_t>(1, 1);
    for (std::uint32_t key = 0; key < request.Get<std::uint8_t>(5); ++key)
        answer.Add(request.Get<std::uint8_t>(4) + key);
    return answer;
}

/// Two keys for each of eight modifiers.
XPacket MakeModifiers()
{
    XPacket answer(XPacket::s_answer, XPacket::s_leastBytes + 16);
    answer.Set<std::uint8_t>(1, 2);
    return answer;
}

XPacket MakeError()
{
    XPacket error(XPacket::s_error);
    error.Set<std::uint8_t>(1, BadRequest);
    return error;
}

XPacket MakeMonitors()
{
    XPacket answer = MakeWordsAnswer({0, 1, 1});
    answer.Add(s_nameAtom);
    answer.Add(0x00010001); // primary, with one output
    answer.Add(0);
    answer.Add(s_screenWidth | std::uint32_t{s_screenHeight} << 16);
    answer.Add(0);
    answer.Add(0);
    answer.Add(XIds::s_output);
    return answer;
}

XPacket MakeScreenResources()
{
    XPacket answer(XPacket::s_answer);
    answer.Set<std::uint16_t>(16, 1);
    answer.Set<std::uint16_t>(18, 1);
    answer.Set<std::uint16_t>(20, 1);
    for (const std::uint32_t word : {XIds::s_crtc, XIds::s_output, XIds::s_mode})
        answer.Add(word);
    answer.Add(s_screenWidth | std::uint32_t{s_screenHeight} << 16);
    answer.Add(60'000); // pixels in a second
    answer.Add(0);      // the horizontal pulse
    answer.Add(40);     // with what isn't shown
    answer.Add(0);      // the vertical pulse
    answer.Add(25);     // with what isn't shown
    answer.Add(0);
    return answer;
}

XPacket MakeOutput()
{
    XPacket answer(XPacket::s_answer, 36);
    answer.Set<std::uint32_t>(12, XIds::s_crtc);
    return answer;
}

XPacket MakeCrtc()
{
    XPacket answer(XPacket::s_answer);
    answer.Set<std::uint32_t>(20, XIds::s_mode);
    return answer;
}

XPacket MakeSoundDevices()
{
    // One device, with a pointer's axis and a wheel.
    constexpr std::array<std::uint8_t, 13> script = {1, 2, 2, 2, 2, 3, 0, 3, 2, 3, 1, 1, 0};
    Reader reader(script);
    return MakeDevices(reader);
}

XPacket MakeInputVersion()
{
    XPacket answer = MakeVersion(2, 2);
    answer.Set<std::uint8_t>(12, xTrue);
    return answer;
}

XPacket MakeSharedImage()
{
    XPacket answer = MakeWordsAnswer({XIds::s_firstVisual});
    answer.Set(1, s_depth);
    return answer;
}

std::optional<XPacket> MakeRandrAnswer(const XRequest& request)
{
    switch (request.GetMinor())
    {
    case X_RRQueryVersion:
        return MakeWordsAnswer({1, 5});
    case X_RRGetScreenResourcesCurrent:
        return MakeScreenResources();
    case X_RRGetMonitors:
        return MakeMonitors();
    case X_RRGetOutputInfo:
        return MakeOutput();
    case X_RRGetCrtcInfo:
        return MakeCrtc();
    default:
        return std::nullopt;
    }
}

std::optional<XPacket> MakeExtensionAnswer(const XRequest& request)
{
    const std::uint8_t minor = request.GetMinor();
    switch (request.GetMajor())
    {
    case XExtensions::s_randr:
        return MakeRandrAnswer(request);
    case XExtensions::s_input:
        if (minor == X_GetExtensionVersion)
            return MakeInputVersion();
        if (minor == X_XIQueryVersion)
            return MakeVersion(2, 2);
        return minor == X_XIQueryDevice ? std::optional(MakeSoundDevices()) : std::nullopt;
    case XExtensions::s_sharedMemory:
        if (minor == X_ShmQueryVersion)
            return MakeVersion(1, 2);
        return minor == X_ShmGetImage ? std::optional(MakeSharedImage()) : std::nullopt;
    case XExtensions::s_fixes:
        return minor == 0 ? std::optional(MakeWordsAnswer({5, 0})) : std::nullopt;
    case XExtensions::s_test:
    case XExtensions::s_shape:
        return minor == 0 ? std::optional(MakeVersion(2, 2)) : std::nullopt;
    default:
        return std::nullopt;
    }
}

/// Whether the core protocol has an answer to the request that isn't made here, because the program doesn't ask it.
bool HasAnswer(std::uint8_t major)
{
    constexpr std::array requests = {
        X_ListProperties,   X_GetMotionEvents, X_TranslateCoords,   X_QueryKeymap,        X_QueryFont,
        X_QueryTextExtents, X_ListFonts,       X_ListFontsWithInfo, X_GetFontPath,        X_ListInstalledColormaps,
        X_AllocColor,       X_AllocNamedColor, X_AllocColorCells,   X_AllocColorPlanes,   X_QueryColors,
        X_LookupColor,      X_QueryBestSize,   X_ListExtensions,    X_GetKeyboardControl, X_GetPointerControl,
        X_GetScreenSaver,   X_ListHosts,       X_SetPointerMapping, X_GetPointerMapping,  X_SetModifierMapping,
    };
    return std::find(requests.begin(), requests.end(), major) != requests.end();
}

} // namespace

std::string XRequest::GetText(std::size_t place, std::size_t bytes) const
{
    std::string text;
    for (std::size_t index = 0; index < bytes; ++index)
        text += Get<char>(place + index);
    return text;
}

std::optional<XPacket> MakeAnswer(const XRequest& request, XClientState& state)
{
    // clang-format off
    switch (request.GetMajor())
    {
    case X_GetWindowAttributes: return MakeWindowAttributes();
    case X_GetGeometry: return MakeGeometry();
    case X_QueryTree: return MakeTree(request, state);
    case X_InternAtom: return MakeAtom(request, state);
    case X_GetAtomName: return MakeAtomName();
    case X_GetProperty: return MakeProperty();
    case X_GetSelectionOwner: return XPacket(XPacket::s_answer);
    case X_GrabPointer: return XPacket(XPacket::s_answer);
    case X_GrabKeyboard: return XPacket(XPacket::s_answer);
    case X_QueryPointer: return MakePointer();
    case X_GetInputFocus: return MakeWordsAnswer({XIds::s_foreignWindow});
    case X_GetImage: return MakeImage(request);
    case X_QueryExtension: return MakeExtension(request);
    case X_GetKeyboardMapping: return MakeKeys(request);
    case X_GetModifierMapping: return MakeModifiers();
    default: break;
    }
    // clang-format on
    if (HasAnswer(request.GetMajor()))
        return MakeError();
    return MakeExtensionAnswer(request);
}

bool IsAskedAgain(const XRequest& request)
{
    switch (request.GetMajor())
    {
    case X_InternAtom:
    case X_GetAtomName:
    case X_QueryExtension:
    case X_GetModifierMapping:
    case XExtensions::s_fixes:
    case XExtensions::s_test:
    case XExtensions::s_shape:
        return false;
    case XExtensions::s_randr:
        return request.GetMinor() != X_RRQueryVersion;
    case XExtensions::s_input:
        return request.GetMinor() == X_XIQueryDevice;
    default:
        return true;
    }
}

} // namespace Orvik::Fuzz
