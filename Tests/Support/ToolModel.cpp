#include "Tests/Support/ToolModel.h"

#include "Core/System/Desktop/KeyCode.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace Orvik::Tests
{
namespace
{

using System::Desktop::KeyCode;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;

bool IsOneOf(const ToolContext& context, KeyCode first, KeyCode second)
{
    return context.type == ToolEventType::Key &&
           (context.key == static_cast<int>(first) || context.key == static_cast<int>(second));
}

bool IsSelect(const ToolContext& context)
{
    return IsOneOf(context, KeyCode::Space, KeyCode::Space) ||
           (context.type == ToolEventType::MouseButton && context.leftButton);
}

bool IsRightRelease(const ToolContext& context)
{
    return context.type == ToolEventType::MouseButton && !context.leftButton && !context.pressed;
}

long long GetSquaredDistance(Position from, Position to)
{
    const long long x = from.x - to.x;
    const long long y = from.y - to.y;
    return x * x + y * y;
}

// Clockwise or not doesn't matter: the corners as the outline goes through them, half a pixel inside of the size.
std::vector<std::pair<double, double>> MakeBox(int width, int height)
{
    return {{width - 0.5, 0.5}, {0.5, 0.5}, {0.5, height - 0.5}, {width - 0.5, height - 0.5}, {width - 0.5, 0.5}};
}

} // namespace

Position ToolModel::GetOrigin(const ToolContext& context) const
{
    const auto display = displays.find(context.displayIds[1]);
    if (display == displays.end())
        return {0, 0};
    const auto host = displays.find(display->second.host);
    if (host == displays.end())
        return {display->second.x, display->second.y};
    return {display->second.x + host->second.x, display->second.y + host->second.y};
}

/// Where the drawn picture begins.
int ToolModel::GetOffset(int window, int capture) const
{
    return std::max(window / 2 - capture / (2 * shrink), 0);
}

Position ToolModel::ToCapture(Position position) const
{
    return {(position.x - GetOffset(windowWidth, captureWidth)) * shrink,
            (position.y - GetOffset(windowHeight, captureHeight)) * shrink};
}

void ToolModel::Start(const Beginning& beginning)
{
    if (state != State::Inactive)
        throw std::logic_error("The model is running.");
    windowWidth = beginning.windowWidth;
    windowHeight = beginning.windowHeight;
    captureWidth = beginning.captureWidth;
    captureHeight = beginning.captureHeight;
    crops = beginning.crops;

    side = 32;
    while (side < windowHeight / 8)
        side *= 2;
    shrink = 1;
    while (captureWidth > windowWidth * shrink || captureHeight > windowHeight * shrink)
        shrink *= 2;
    NoteView();

    const Position origin = GetOrigin(beginning.context);
    MoveTo(static_cast<long long>(beginning.context.x) - origin.x,
           static_cast<long long>(beginning.context.y) - origin.y);
    outline = {false, {0, 0}, 0.0, MakeBox(1, 1)};
    vertices.clear();
    state = State::Ready;
    zoom = 4;
    region = side / 4;
    PlaceMagnifier();
    isPolygon = beginning.isPolygon;
}

void ToolModel::Update(const ToolContext& context, Receiver receiver)
{
    delivery.reset();
    pointerMove.reset();
    if (state == State::Inactive || context.type == ToolEventType::None)
    {
        Note(state == State::Inactive ? "input while inactive" : "no input");
        return;
    }
    UpdateZoom(context);
    UpdateKeys(context);
    if (isPolygon)
        UpdatePolygon(context, receiver);
    else
        UpdateRectangle(context, receiver);
}

void ToolModel::UpdateZoom(const ToolContext& context)
{
    const bool isIn =
        context.wheelDelta > 0 || (IsOneOf(context, KeyCode::NumpadAdd, KeyCode::Equals) && context.pressed);
    const bool isOut =
        context.wheelDelta < 0 || (IsOneOf(context, KeyCode::NumpadSubtract, KeyCode::Minus) && context.pressed);
    const int limit = side / shrink;
    if (isIn)
        SetZoom(std::min(zoom * 2, limit));
    else if (isOut)
        SetZoom(std::max(zoom / 2, 2));
}

// A small magnifier over a strongly reduced picture has an upper limit below 2. The zoom can't be odd or 0: it is 2.
void ToolModel::SetZoom(int wanted)
{
    NoteZoom(wanted);
    zoom = std::max(wanted, 2);
    region = side / zoom;
    PlaceMagnifier();
}

void ToolModel::UpdateKeys(const ToolContext& context)
{
    Position target = cursor;
    std::string direction;
    if (!context.pressed)
        return;
    if (IsOneOf(context, KeyCode::Up, KeyCode::W))
    {
        --target.y;
        direction = "up";
    }
    else if (IsOneOf(context, KeyCode::Down, KeyCode::S))
    {
        ++target.y;
        direction = "down";
    }
    else if (IsOneOf(context, KeyCode::Left, KeyCode::A))
    {
        --target.x;
        direction = "left";
    }
    else if (IsOneOf(context, KeyCode::Right, KeyCode::D))
    {
        ++target.x;
        direction = "right";
    }
    else
    {
        return;
    }
    target.x = std::clamp(target.x, 0, windowWidth - 1);
    target.y = std::clamp(target.y, 0, windowHeight - 1);
    if (target == cursor)
    {
        Note("keys: at the window's edge");
        return;
    }
    Note("keys: " + direction);
    const Position origin = GetOrigin(context);
    pointerMove = Position{target.x + origin.x, target.y + origin.y};
}

bool ToolModel::Follow(const ToolContext& context)
{
    if (context.type != ToolEventType::MouseMove)
        return false;
    const Position origin = GetOrigin(context);
    const long long x = static_cast<long long>(context.x) - origin.x;
    const long long y = static_cast<long long>(context.y) - origin.y;
    const auto display = displays.find(context.displayIds[1]);
    if (display == displays.end())
        Note("display: none");
    else if (display->second.host < 0)
        Note("display: one");
    else
        Note(displays.contains(display->second.host) ? "display: on another one" : "display: on one that is gone");
    if (x == cursor.x && y == cursor.y)
    {
        Note("cursor: a move to the same place");
        return false;
    }
    MoveTo(x, y);
    return true;
}

void ToolModel::MoveTo(long long x, long long y)
{
    if (std::abs(x) > 0x7FFFFFFF || std::abs(y) > 0x7FFFFFFF)
        Note("cursor: beyond 32 bits");
    const long long halfWidth = captureWidth / (2 * shrink);
    const long long halfHeight = captureHeight / (2 * shrink);
    const long long left = windowWidth / 2 - halfWidth;
    const long long right = windowWidth / 2 + halfWidth;
    const long long top = windowHeight / 2 - halfHeight;
    const long long bottom = windowHeight / 2 + halfHeight;
    if (x < left)
        Note("cursor: held at the left");
    if (x > right)
        Note("cursor: held at the right");
    if (y < top)
        Note("cursor: held at the top");
    if (y > bottom)
        Note("cursor: held at the bottom");
    cursor.x = static_cast<int>(std::min(std::max(x, left), right));
    cursor.y = static_cast<int>(std::min(std::max(y, top), bottom));
}

void ToolModel::PlaceMagnifier()
{
    margin = 16 * std::max(side / 128, 1);
    magnifier = {cursor.x + margin, cursor.y + margin};
    if (magnifier.x + side > windowWidth)
        magnifier.x = std::max(cursor.x - margin - side, 0);
    if (magnifier.y + side + margin > windowHeight)
        magnifier.y = std::max(cursor.y - margin - side, 0);
    shownPosition = {cursor.x - GetOffset(windowWidth, captureWidth),
                     cursor.y - GetOffset(windowHeight, captureHeight)};
    NoteMagnifier();
}

void ToolModel::UpdateRectangle(const ToolContext& context, Receiver receiver)
{
    if (state == State::Ready && IsSelect(context) && context.pressed)
    {
        Note("rectangle, ready: press");
        drag = {cursor, {0, 0}, 0, 0};
        state = State::Selecting;
    }
    else if (state == State::Ready && IsOneOf(context, KeyCode::LeftControl, KeyCode::LeftControl))
    {
        Note(context.pressed ? "rectangle, ready: control down" : "rectangle, ready: control up");
        controlFlag = context.pressed ? controlFlag | 1 : controlFlag ^ 1;
    }
    else if (state == State::Selecting && IsSelect(context) && !context.pressed)
    {
        FinishRectangle(receiver);
    }
    else if (state == State::Selecting && IsRightRelease(context))
    {
        Note("rectangle, selecting: right release");
        Hide();
    }
    else if (Follow(context))
    {
        Note(state == State::Ready ? "rectangle, ready: move" : "rectangle, selecting: move");
        if (state == State::Selecting)
            MoveRectangle();
        PlaceMagnifier();
    }
    else
    {
        Note("ignored");
    }
}

void ToolModel::MoveRectangle()
{
    drag.corner = {std::min(drag.anchor.x, cursor.x), std::min(drag.anchor.y, cursor.y)};
    drag.width = std::abs(drag.anchor.x - cursor.x);
    drag.height = std::abs(drag.anchor.y - cursor.y);
    const int lower = std::min(windowHeight - drag.anchor.y, windowHeight - cursor.y);
    outline.isHidden = false;
    outline.place = {std::max(drag.corner.x - 1, 0), std::max(lower - 1, 0)};
    outline.depth = 2.0;
    outline.points = MakeBox(drag.width + 2, drag.height + 2);
    if (cursor.x < drag.anchor.x)
        Note("rectangle: leftward");
    if (cursor.y < drag.anchor.y)
        Note("rectangle: upward");
    if (drag.corner.x == 0)
        Note("rectangle: outline at the left edge");
    if (lower == 0)
        Note("rectangle: outline at the lower edge");
}

void ToolModel::FinishRectangle(Receiver receiver)
{
    const int width = drag.width * shrink;
    const int height = drag.height * shrink;
    if (width * height < 1)
    {
        Note("rectangle, selecting: release without area");
        if (width == 0 && height > 0)
            Note("rectangle: no width");
        if (height == 0 && width > 0)
            Note("rectangle: no height");
        return;
    }
    const Position corner = ToCapture(drag.corner);
    const Delivery made = {corner.x, corner.y, corner.x + width, corner.y + height, std::nullopt};
    NoteDelivery(made);
    if (receiver != Receiver::None)
        delivery = made;
    if (receiver == Receiver::GoesOn)
    {
        Note("rectangle, selecting: release, goes on");
        Hide();
        return;
    }
    Note(receiver == Receiver::Stops ? "rectangle, selecting: release, stops"
                                     : "rectangle, selecting: release, no receiver");
    End();
}

void ToolModel::UpdatePolygon(const ToolContext& context, Receiver receiver)
{
    if (state == State::Ready && IsSelect(context) && !context.pressed)
    {
        Note("polygon, ready: release");
        vertices = {cursor};
        state = State::Selecting;
    }
    else if (state == State::Selecting && IsSelect(context) && !context.pressed)
    {
        PlaceVertex(receiver);
    }
    else if (state == State::Selecting && IsRightRelease(context))
    {
        RemoveVertex();
    }
    else if (Follow(context))
    {
        Note(state == State::Ready ? "polygon, ready: move" : "polygon, selecting: move");
        if (state == State::Selecting)
            MovePolygon();
        PlaceMagnifier();
    }
    else
    {
        Note("ignored");
    }
}

void ToolModel::MovePolygon()
{
    outline = {false, {0, 0}, 0.2, {}};
    for (const Position& vertex : vertices)
        outline.points.emplace_back(vertex.x, windowHeight - vertex.y);
    outline.points.emplace_back(cursor.x, windowHeight - cursor.y);
}

void ToolModel::RemoveVertex()
{
    vertices.pop_back();
    if (vertices.empty())
    {
        Note("polygon, selecting: right release, none remains");
        Hide();
        return;
    }
    Note("polygon, selecting: right release, a vertex remains");
    MovePolygon();
    PlaceMagnifier();
}

void ToolModel::PlaceVertex(Receiver receiver)
{
    const long long distance = GetSquaredDistance(vertices.front(), cursor);
    if (vertices.size() == 2 && distance < 257)
        Note("polygon: two vertices don't close");
    if (vertices.size() > 2 && distance == 257)
        Note("polygon: a squared distance of 257 doesn't");
    if (vertices.size() > 2 && distance < 257)
    {
        Position first = vertices.front();
        Position last = vertices.front();
        for (const Position& vertex : vertices)
        {
            first = {std::min(first.x, vertex.x), std::min(first.y, vertex.y)};
            last = {std::max(last.x, vertex.x), std::max(last.y, vertex.y)};
        }
        Delivery made = {ToCapture(first).x, ToCapture(first).y, ToCapture(last).x, ToCapture(last).y, {}};
        if ((made.right - made.left) * (made.bottom - made.top) >= 1)
        {
            if (distance == 256)
                Note("polygon: a squared distance of 256 closes");
            vertices.push_back(Position(vertices.front()));
            made.ring.emplace();
            for (const Position& vertex : vertices)
                made.ring->push_back({ToCapture(vertex).x - made.left, ToCapture(vertex).y - made.top});
            NoteDelivery(made);
            if (receiver != Receiver::None)
                delivery = made;
            Note(receiver == Receiver::GoesOn  ? "polygon, selecting: closes, goes on"
                 : receiver == Receiver::Stops ? "polygon, selecting: closes, stops"
                                               : "polygon, selecting: closes, no receiver");
            if (receiver == Receiver::GoesOn)
                Hide();
            else
                End();
            return;
        }
        Note("polygon: no area");
    }
    Note("polygon, selecting: another vertex");
    vertices.push_back(cursor);
}

/// A selection is over and the tool goes on.
void ToolModel::Hide()
{
    outline.isHidden = true;
    drag = {};
    vertices.clear();
    state = State::Ready;
}

void ToolModel::End()
{
    if (state == State::Inactive)
        Note("end while inactive");
    else
        Note(state == State::Ready ? "end while ready" : "end while selecting");
    drag = {};
    vertices.clear();
    state = State::Inactive;
    zoom = 1;
    windowWidth = 0;
    windowHeight = 0;
    shrink = 1;
}

} // namespace Orvik::Tests
