// What is of any length in the X protocol: the server's setup, lists in answers, and input devices.
#include "Tests/Fuzz/XAnswers.h"

#include <X11/X.h>
#include <X11/Xproto.h>
#include <X11/extensions/XI2.h>
#include <X11/extensions/XI2proto.h>
#include <X11/extensions/randr.h>
#include <algorithm>
#include <array>

namespace Orvik::Fuzz
{
namespace
{

struct Visual
{
    std::uint8_t depth;
    std::uint8_t kind;
    std::uint32_t red;
    std::uint32_t green;
    std::uint32_t blue;
};

// The first is the root's. One depth has neighbours here.
constexpr std::array<Visual, 6> s_visuals = {{{24, TrueColor, 0xFF0000, 0xFF00, 0xFF},
                                              {24, DirectColor, 0xFF0000, 0xFF00, 0xFF},
                                              {24, TrueColor, 0xFF, 0xFF00, 0xFF0000},
                                              {32, TrueColor, 0xFF0000, 0xFF00, 0xFF},
                                              {16, TrueColor, 0xF800, 0x7E0, 0x1F},
                                              {8, PseudoColor, 0, 0, 0}}};
constexpr std::array<std::uint8_t, 4> s_depths = {24, 32, 16, 8};

/// Words of the setup, which has no more than bytes in them.
constexpr std::uint32_t Join(std::uint32_t first, std::uint32_t second, std::uint32_t third, std::uint32_t fourth)
{
    return first | second << 8 | third << 16 | fourth << 24;
}

void AddFormats(XPacket& setup)
{
    constexpr std::array<std::array<std::uint8_t, 2>, 5> formats = {{{1, 1}, {8, 8}, {16, 16}, {24, 32}, {32, 32}}};
    for (const auto& [depth, pixelBits] : formats)
    {
        setup.Add(Join(depth, pixelBits, 32, 0));
        setup.Add(0);
    }
}

void AddVisuals(XPacket& setup, std::uint8_t depth)
{
    const auto isOfDepth = [depth](const Visual& visual) { return visual.depth == depth; };
    setup.Add(depth | static_cast<std::uint32_t>(std::count_if(s_visuals.begin(), s_visuals.end(), isOfDepth)) << 16);
    setup.Add(0);
    for (std::size_t index = 0; index < s_visuals.size(); ++index)
    {
        const Visual& visual = s_visuals[index];
        if (visual.depth != depth)
            continue;
        setup.Add(XIds::s_firstVisual + static_cast<std::uint32_t>(index));
        setup.Add(Join(visual.kind, 8, 0, 1));
        for (const std::uint32_t word : {visual.red, visual.green, visual.blue, 0U})
            setup.Add(word);
    }
}

/// Items of one, two or four bytes; none without a type, or in another format, which Xlib takes for an error.
void MendProperty(XPacket& answer)
{
    constexpr std::uint32_t most = 15;
    const std::uint8_t format = answer.Get<std::uint8_t>(1);
    const bool isFormat = format == 8 || format == 16 || format == 32;
    const bool isThere = isFormat && answer.Get<std::uint32_t>(8) != None;
    const std::uint32_t count = isThere ? std::min(answer.Get<std::uint32_t>(16), most) : 0;
    answer.Set(16, count);
    answer.Resize(XPacket::s_leastBytes + std::size_t{count} * (format / 8));
}

void MendMonitors(XPacket& answer)
{
    constexpr std::uint32_t most = 15;
    constexpr std::uint16_t mostOutputs = 3;
    const std::uint32_t count = std::min(answer.Get<std::uint32_t>(12), most);
    std::uint32_t outputs = 0;
    std::size_t place = XPacket::s_leastBytes;
    for (std::uint32_t index = 0; index < count; ++index)
    {
        constexpr std::size_t bytes = 24;
        answer.Grow(place + bytes);
        const std::uint16_t own = std::min(answer.Get<std::uint16_t>(place + 6), mostOutputs);
        answer.Set(place + 6, own);
        outputs += own;
        place += bytes + std::size_t{own} * 4;
    }
    answer.Set(12, count);
    answer.Set(16, outputs);
    answer.Resize(place);
}

/// The counts at those places, of items of so many bytes, which follow.
void MendLists(XPacket& answer, std::size_t firstBytes, std::initializer_list<std::array<std::size_t, 2>> lists)
{
    constexpr std::uint16_t most = 15;
    std::size_t bytes = firstBytes;
    for (const auto& [place, itemBytes] : lists)
    {
        const std::uint16_t count = std::min(answer.Get<std::uint16_t>(place), most);
        answer.Set(place, count);
        bytes += (count * itemBytes + 3) / 4 * 4;
    }
    answer.Resize(bytes);
}

/// The names of all modes come together at the end.
void MendModes(XPacket& answer)
{
    MendLists(answer, XPacket::s_leastBytes, {{16, 4}, {18, 4}, {20, 32}, {22, 1}});
    const std::size_t first =
        XPacket::s_leastBytes + (std::size_t{answer.Get<std::uint16_t>(16)} + answer.Get<std::uint16_t>(18)) * 4;
    std::uint16_t left = answer.Get<std::uint16_t>(22);
    for (std::size_t index = 0; index < answer.Get<std::uint16_t>(20); ++index)
    {
        const std::size_t place = first + index * 32 + 26;
        const std::uint16_t length = std::min(answer.Get<std::uint16_t>(place), left);
        answer.Set(place, length);
        left = static_cast<std::uint16_t>(left - length);
    }
}

void MendRandr(std::uint8_t minor, XPacket& answer)
{
    if (minor == X_RRGetMonitors)
        MendMonitors(answer);
    else if (minor == X_RRGetScreenResourcesCurrent)
        MendModes(answer);
    else if (minor == X_RRGetOutputInfo)
        MendLists(answer, 36, {{26, 4}, {28, 4}, {32, 4}, {34, 1}});
    else if (minor == X_RRGetCrtcInfo)
        MendLists(answer, XPacket::s_leastBytes, {{28, 4}, {30, 4}});
}

void MendKeys(const XRequest& request, XPacket& answer)
{
    constexpr std::uint8_t most = 8;
    const std::uint8_t symbols = std::clamp<std::uint8_t>(answer.Get<std::uint8_t>(1), 1, most);
    answer.Set(1, symbols);
    answer.Resize(XPacket::s_leastBytes + std::size_t{request.Get<std::uint8_t>(5)} * symbols * 4);
}

/// A byte, or after 0xFF four.
std::uint32_t TakeShort(Reader& script)
{
    const std::uint8_t byte = script.TakeByte();
    return byte == 0xFF ? static_cast<std::uint32_t>(script.TakeNumber()) : byte;
}

bool IsOfRoot(const XRequest& request)
{
    return request.Get<std::uint32_t>(4) == XIds::s_root;
}

void AddClassHead(XPacket& packet, std::uint32_t type, std::uint32_t words, std::uint32_t source, std::uint32_t number)
{
    packet.Add(type | words << 16);
    packet.Add(source | number << 16);
}

} // namespace

std::vector<std::uint8_t> MakeSetup()
{
    constexpr std::uint32_t ownIds = 0x0FFF'FFFF;
    XPacket setup(XPacket::s_answer, 40);
    setup.Set<std::uint16_t>(2, 11); // the version of the protocol
    setup.Set<std::uint32_t>(12, XIds::s_firstOwn);
    setup.Set<std::uint32_t>(16, ownIds);
    setup.Set<std::uint16_t>(26, 0xFFFF); // the longest request
    setup.Set<std::uint8_t>(28, 1);       // screen
    setup.Set<std::uint8_t>(29, 5);       // formats
    setup.Set<std::uint32_t>(32, Join(32, 32, 8, 255));
    AddFormats(setup);
    for (const std::uint32_t word : {XIds::s_root, XIds::s_colourMap, 0xFFFFFFU, 0U, 0U})
        setup.Add(word);
    setup.Add(s_screenWidth | std::uint32_t{s_screenHeight} << 16);
    setup.Add(Join(16, 0, 12, 0)); // millimetres
    setup.Add(Join(1, 0, 1, 0));   // colour maps
    setup.Add(XIds::s_firstVisual);
    setup.Add(Join(0, 0, s_visuals[0].depth, s_depths.size()));
    for (const std::uint8_t depth : s_depths)
        AddVisuals(setup, depth);
    std::vector<std::uint8_t> bytes = setup.Finish(11);
    const auto words = static_cast<std::uint16_t>((bytes.size() - 8) / 4);
    bytes[4] = bytes[5] = 0;
    std::memcpy(&bytes[6], &words, sizeof(words));
    return bytes;
}

bool HasFreeLength(const XRequest& request)
{
    return request.GetMajor() == X_GetImage || (request.GetMajor() == X_QueryTree && IsOfRoot(request));
}

void MendCounts(const XRequest& request, XPacket& answer)
{
    switch (request.GetMajor())
    {
    case X_QueryTree: // that of the root is read by the program itself
        if (!IsOfRoot(request))
            MendLists(answer, XPacket::s_leastBytes, {{16, 4}});
        return;
    case X_GetProperty:
        MendProperty(answer);
        return;
    case X_GetKeyboardMapping:
        MendKeys(request, answer);
        return;
    case XExtensions::s_randr:
        MendRandr(request.GetMinor(), answer);
        return;
    default:
        return;
    }
}

void AddDeviceClass(XPacket& packet, Reader& script)
{
    const std::uint8_t type = script.TakeByte() % 5;
    const std::uint32_t source = script.TakeByte();
    const std::uint32_t number = script.TakeByte();
    if (type == XIKeyClass || type == XIButtonClass)
    {
        const std::uint32_t count = number % 8;
        const std::uint32_t masks = type == XIButtonClass && count > 0 ? 1 : 0;
        AddClassHead(packet, type, 2 + masks + count, source, count);
        for (std::uint32_t index = 0; index < masks + count; ++index)
            packet.Add(TakeShort(script));
    }
    else if (type == XIValuatorClass)
    {
        AddClassHead(packet, type, 11, source, number);
        for (int zeros = 5; zeros > 0; --zeros)
            packet.Add(0);
        packet.Add(TakeShort(script)); // where it is
        for (int zeros = 3; zeros > 0; --zeros)
            packet.Add(0);
    }
    else if (type == XIScrollClass)
    {
        AddClassHead(packet, type, 6, source, number);
        packet.Add(script.TakeByte()); // vertical or not
        packet.Add(0);
        packet.Add(TakeShort(script)); // the increment, and its fraction
        packet.Add(TakeShort(script));
    }
    else
        AddClassHead(packet, XITouchClass, 2, source, number);
}

XPacket MakeDevices(Reader& script)
{
    const std::uint8_t count = script.TakeByte() % 4;
    XPacket answer(XPacket::s_answer);
    answer.Set<std::uint16_t>(8, count);
    for (int device = 0; device < count; ++device)
    {
        const std::uint32_t id = script.TakeByte();
        const std::uint32_t classes = script.TakeByte() % 5;
        answer.Add(id | std::uint32_t{XISlavePointer} << 16);
        answer.Add(classes << 16);
        answer.Add(Join(0, 0, 1, 0)); // no name; switched on
        for (std::uint32_t each = 0; each < classes; ++each)
            AddDeviceClass(answer, script);
    }
    return answer;
}

} // namespace Orvik::Fuzz
