#include "Tests/Support/ToolPerson.h"

#include "Core/System/Desktop/KeyCode.h"

#include <limits>

namespace Orvik::Tests
{
namespace
{

using System::Desktop::KeyCode;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;

constexpr std::array s_keys = {KeyCode::NumpadAdd, KeyCode::Equals,      KeyCode::NumpadSubtract,
                               KeyCode::Minus,     KeyCode::Up,          KeyCode::W,
                               KeyCode::Down,      KeyCode::S,           KeyCode::Left,
                               KeyCode::A,         KeyCode::Right,       KeyCode::D,
                               KeyCode::Space,     KeyCode::LeftControl, KeyCode::Q,
                               KeyCode::Escape};

} // namespace

// The distribution of the standard library gives other numbers in each of them.
int ToolPerson::Pick(int least, int most)
{
    const auto count = static_cast<std::uint32_t>(most - least) + 1;
    return least + static_cast<int>(m_random() % count);
}

std::map<int, ToolModel::Display> ToolPerson::MakeDisplays()
{
    return {{1, {Pick(-2000, 2000), Pick(-2000, 2000), -1}},
            {2, {Pick(-300, 300), Pick(-300, 300), 1}},
            {3, {Pick(-300, 300), Pick(-300, 300), 77}}};
}

std::array<std::uint16_t, 2> ToolPerson::PickDisplay()
{
    constexpr std::array<std::uint16_t, 5> ids = {0xFFFF, 1, 2, 3, 4};
    // Only the second one counts.
    return {static_cast<std::uint16_t>(Pick(0, 4)), ids[static_cast<std::size_t>(Pick(0, 4))]};
}

ToolModel::Beginning ToolPerson::MakeBeginning()
{
    ToolModel::Beginning beginning;
    beginning.windowWidth = Pick(1, 300);
    beginning.windowHeight = IsOnce(10) ? Pick(257, 1200) : Pick(1, 250);
    beginning.captureWidth = beginning.windowWidth;
    beginning.captureHeight = beginning.windowHeight;
    switch (Pick(0, 5))
    {
    case 0:
        break;
    case 1: // smaller
        beginning.captureWidth = Pick(1, beginning.windowWidth);
        beginning.captureHeight = Pick(1, beginning.windowHeight);
        break;
    case 2: // one half
        beginning.captureWidth = Pick(beginning.windowWidth + 1, 2 * beginning.windowWidth);
        break;
    case 3: // a quarter
        beginning.captureHeight = 4 * beginning.windowHeight - Pick(0, 3);
        break;
    case 4: // a strip on a small window
        beginning.windowWidth = Pick(1, 40);
        beginning.captureWidth = Pick(900, 1100);
        beginning.captureHeight = Pick(1, 20);
        break;
    default:
        beginning.captureWidth = Pick(1, 400);
        beginning.captureHeight = Pick(1, 300);
        break;
    }
    beginning.crops = !IsOnce(4);
    beginning.isPolygon = IsOnce(2);
    beginning.context.type = ToolEventType::MouseMove;
    beginning.context.displayIds = PickDisplay();
    beginning.context.x = Pick(-2500, 2500);
    beginning.context.y = Pick(-2500, 2500);
    return beginning;
}

ToolModel::Receiver ToolPerson::MakeReceiver()
{
    const int choice = Pick(0, 19);
    if (choice == 0)
        return ToolModel::Receiver::None;
    return choice == 1 ? ToolModel::Receiver::Stops : ToolModel::Receiver::GoesOn;
}

ToolContext ToolPerson::MakeInput(const ToolModel& model)
{
    ToolContext context;
    context.displayIds = PickDisplay();
    const int choice = Pick(0, 99);
    if (choice < 10)
    {
        context.type = ToolEventType::MouseWheel;
        context.wheelDelta = static_cast<float>(Pick(-3, 3)) * 0.5F;
    }
    else if (choice < 35)
    {
        context.type = ToolEventType::Key;
        context.key = static_cast<std::uint8_t>(s_keys[static_cast<std::size_t>(Pick(0, s_keys.size() - 1))]);
        context.pressed = IsOnce(2);
    }
    else if (choice < 60)
    {
        context.type = ToolEventType::MouseButton;
        context.leftButton = !IsOnce(8);
        context.pressed = IsOnce(2);
    }
    else if (choice < 99)
    {
        return MakeMove(model);
    }
    return context;
}

ToolContext ToolPerson::MakeMove(const ToolModel& model)
{
    using Limits = std::numeric_limits<std::int32_t>;
    ToolContext move;
    move.type = ToolEventType::MouseMove;
    // A display whose place is far away means the same edge of the picture for each move; mostly it is none.
    move.displayIds = IsOnce(4) ? PickDisplay() : std::array<std::uint16_t, 2>{0, 0xFFFF};
    if (IsOnce(200))
    {
        move.x = IsOnce(2) ? Limits::min() : Limits::max();
        move.y = IsOnce(2) ? Limits::min() : Limits::max();
        return move;
    }
    const Position place = FindPlace(model);
    move.x = place.x;
    move.y = place.y;
    const auto display = model.displays.find(move.displayIds[1]);
    if (display == model.displays.end() || IsOnce(8))
        return move;
    const auto host = model.displays.find(display->second.host);
    move.x += display->second.x + (host != model.displays.end() ? host->second.x : 0);
    move.y += display->second.y + (host != model.displays.end() ? host->second.y : 0);
    return move;
}

// Window pixels.
Position ToolPerson::FindPlace(const ToolModel& model)
{
    if (!model.vertices.empty() && IsOnce(3))
    {
        // On both sides of where a click closes the polygon: 16 * 16 and 16 * 16 + 1.
        constexpr std::array<Position, 6> distances = {{{16, 0}, {0, -16}, {16, 1}, {-1, 16}, {0, 0}, {3, -2}}};
        const Position distance = distances[static_cast<std::size_t>(Pick(0, 5))];
        return {model.vertices.front().x + distance.x, model.vertices.front().y + distance.y};
    }
    switch (Pick(0, 7))
    {
    case 0:
        return model.cursor;
    case 1:
    case 2:
        return {model.cursor.x + Pick(-9, 9), model.cursor.y + Pick(-9, 9)};
    case 3: // a corner or an edge, and what is beyond
        return {IsOnce(2) ? Pick(-1, 1) : model.windowWidth + Pick(-1, 1),
                IsOnce(2) ? Pick(-1, 1) : model.windowHeight + Pick(-1, 1)};
    case 4: // only one coordinate changes
        return {model.cursor.x, Pick(-5, model.windowHeight + 5)};
    case 5:
        return {Pick(-5, model.windowWidth + 5), model.cursor.y};
    default:
        return {Pick(-50, model.windowWidth + 50), Pick(-50, model.windowHeight + 50)};
    }
}

} // namespace Orvik::Tests
