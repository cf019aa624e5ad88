// What the model of the tool counts.
#include "Tests/Support/ToolModel.h"

namespace Orvik::Tests
{

const std::vector<std::string>& ToolModel::GetTransitions()
{
    static const std::vector<std::string> names = {
        "rectangle, ready: press",
        "rectangle, ready: control down",
        "rectangle, ready: control up",
        "rectangle, ready: move",
        "rectangle, selecting: move",
        "rectangle, selecting: release without area",
        "rectangle, selecting: release, goes on",
        "rectangle, selecting: release, stops",
        "rectangle, selecting: release, no receiver",
        "rectangle, selecting: right release",
        "polygon, ready: release",
        "polygon, ready: move",
        "polygon, selecting: closes, goes on",
        "polygon, selecting: closes, stops",
        "polygon, selecting: closes, no receiver",
        "polygon, selecting: another vertex",
        "polygon, selecting: right release, a vertex remains",
        "polygon, selecting: right release, none remains",
        "polygon, selecting: move",
        "end while ready",
        "end while selecting",
        "end while inactive",
        "input while inactive",
        "no input",
        "ignored",
    };
    return names;
}

const std::vector<std::string>& ToolModel::GetEdges()
{
    static const std::vector<std::string> names = {
        "view: as large as the window",
        "view: smaller than the window",
        "view: one half",
        "view: a quarter or less",
        "view: the reduced size isn't whole",
        "cursor: held at the left",
        "cursor: held at the top",
        "cursor: held at the right",
        "cursor: held at the bottom",
        "cursor: a move to the same place",
        "cursor: beyond 32 bits",
        "display: none",
        "display: one",
        "display: on another one",
        "display: on one that is gone",
        "magnifier: right of the cursor and below",
        "magnifier: on the left",
        "magnifier: above",
        "magnifier: above because of the margin alone",
        "magnifier: stopped at the left edge",
        "magnifier: stopped at the upper edge",
        "magnifier: beyond the picture's left",
        "magnifier: beyond the picture's top",
        "magnifier: beyond the picture's right",
        "magnifier: beyond the picture's bottom",
        "zoom: in",
        "zoom: out",
        "zoom: at the upper limit",
        "zoom: at the lower limit",
        "zoom: the upper limit is below the lower one",
        "keys: up",
        "keys: down",
        "keys: left",
        "keys: right",
        "keys: at the window's edge",
        "rectangle: leftward",
        "rectangle: upward",
        "rectangle: no width",
        "rectangle: no height",
        "rectangle: outline at the left edge",
        "rectangle: outline at the lower edge",
        "rectangle: reduced",
        "rectangle: to the last column and row",
        "polygon: a squared distance of 256 closes",
        "polygon: a squared distance of 257 doesn't",
        "polygon: two vertices don't close",
        "polygon: no area",
        "polygon: reduced",
    };
    return names;
}

void ToolModel::Note(const std::string& name)
{
    ++visits[name];
}

void ToolModel::NoteZoom(int wanted)
{
    if (wanted < 2)
        Note("zoom: the upper limit is below the lower one");
    if (wanted > zoom)
        Note("zoom: in");
    else if (wanted < zoom)
        Note("zoom: out");
    else
        Note(zoom == 2 ? "zoom: at the lower limit" : "zoom: at the upper limit");
}

void ToolModel::NoteView()
{
    if (captureWidth == windowWidth && captureHeight == windowHeight)
        Note("view: as large as the window");
    if (captureWidth < windowWidth && captureHeight < windowHeight)
        Note("view: smaller than the window");
    if (shrink == 2)
        Note("view: one half");
    if (shrink > 2)
        Note("view: a quarter or less");
    if (captureWidth % shrink != 0 || captureHeight % shrink != 0)
        Note("view: the reduced size isn't whole");
}

void ToolModel::NoteMagnifier()
{
    const bool isLeft = magnifier.x < cursor.x;
    const bool isAbove = magnifier.y < cursor.y;
    if (!isLeft && !isAbove)
        Note("magnifier: right of the cursor and below");
    if (isLeft)
        Note(magnifier.x == 0 ? "magnifier: stopped at the left edge" : "magnifier: on the left");
    if (isAbove)
        Note(magnifier.y == 0 ? "magnifier: stopped at the upper edge" : "magnifier: above");
    if (isAbove && cursor.y + margin + side <= windowHeight)
        Note("magnifier: above because of the margin alone");
    const Position corner = {shownPosition.x * shrink - region / 2, shownPosition.y * shrink - region / 2};
    if (corner.x < 0)
        Note("magnifier: beyond the picture's left");
    if (corner.y < 0)
        Note("magnifier: beyond the picture's top");
    if (corner.x + region > captureWidth)
        Note("magnifier: beyond the picture's right");
    if (corner.y + region > captureHeight)
        Note("magnifier: beyond the picture's bottom");
}

void ToolModel::NoteDelivery(const Delivery& made)
{
    if (shrink > 1)
        Note(made.ring ? "polygon: reduced" : "rectangle: reduced");
    if (!made.ring && made.right == captureWidth && made.bottom == captureHeight)
        Note("rectangle: to the last column and row");
}

} // namespace Orvik::Tests
