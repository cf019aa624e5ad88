#pragma once

#include "Core/Graphics/Tools/ToolContext.h"
#include "Tests/Support/Desktop/Picture.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Orvik::Tests
{

/// What the snipping tool has to do, written down once more: by the rules alone, in whole numbers, slowly, and without
/// calling anything of the tool. It has no objects to draw, only the numbers that those should have.
class ToolModel
{
public:
    enum class State
    {
        Inactive,
        Ready,
        Selecting,
    };

    /// What the receiver of a selection answers; without one the tool ends.
    enum class Receiver
    {
        None,
        GoesOn,
        Stops,
    };

    struct Display
    {
        int x = 0;
        int y = 0;
        int host = -1; ///< the display that it is on; none if negative
    };

    struct Beginning
    {
        int windowWidth = 1;
        int windowHeight = 1;
        int captureWidth = 1;
        int captureHeight = 1;
        bool crops = false;
        bool isPolygon = false;
        System::Tools::ToolContext context;
    };

    /// A rectangle that is being dragged; window pixels.
    struct Drag
    {
        Position anchor;
        Position corner;
        int width = 0;
        int height = 0;
    };

    /// The line around a selection; y counts upward from the lower edge.
    struct Outline
    {
        bool isHidden = false;
        Position place;
        double depth = 0.0;
        std::vector<std::pair<double, double>> points;
    };

    struct Delivery
    {
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        std::optional<std::vector<Position>> ring;
    };

    /// Begins on an inactive tool.
    void Start(const Beginning& beginning);
    void Update(const System::Tools::ToolContext& context, Receiver receiver);
    void End();

    std::map<int, Display> displays;
    /// What came of the last `Update`.
    std::optional<Delivery> delivery;
    std::optional<Position> pointerMove; ///< where the pointer was put; screen pixels

    State state = State::Inactive;
    bool isPolygon = false;
    int controlFlag = 0;
    bool crops = false;
    int windowWidth = 0;
    int windowHeight = 0;
    int captureWidth = 0;
    int captureHeight = 0;
    int shrink = 1; ///< capture pixels to a window pixel; 1 while inactive
    int zoom = 1;
    int side = 256;   ///< of the magnifier
    int region = 256; ///< capture pixels that a side of it shows
    Position cursor;
    Drag drag;
    std::vector<Position> vertices;
    Outline outline;

    // What follows the cursor. Magnifier: window pixels, y downward.
    int margin = 0;
    Position magnifier;
    Position shownPosition; ///< in the drawn picture, as the label says it

    /// How often each transition and each edge of the geometry was met.
    std::map<std::string, int> visits;

    /// All that can be met. `visits` has no other names.
    [[nodiscard]] static const std::vector<std::string>& GetTransitions();
    [[nodiscard]] static const std::vector<std::string>& GetEdges();

private:
    void UpdateZoom(const System::Tools::ToolContext& context);
    void UpdateKeys(const System::Tools::ToolContext& context);
    void UpdateRectangle(const System::Tools::ToolContext& context, Receiver receiver);
    void UpdatePolygon(const System::Tools::ToolContext& context, Receiver receiver);
    void PlaceVertex(Receiver receiver);
    void RemoveVertex();
    void FinishRectangle(Receiver receiver);
    void MoveTo(long long x, long long y);
    void MoveRectangle();
    void MovePolygon();
    void PlaceMagnifier();
    void SetZoom(int wanted);
    void Hide();
    /// Whether the context is a move to another place than the cursor's; the cursor is there then.
    [[nodiscard]] bool Follow(const System::Tools::ToolContext& context);
    [[nodiscard]] Position GetOrigin(const System::Tools::ToolContext& context) const;
    [[nodiscard]] int GetOffset(int window, int capture) const;
    [[nodiscard]] Position ToCapture(Position position) const;
    void Note(const std::string& name);
    void NoteZoom(int wanted);
    void NoteMagnifier();
    void NoteDelivery(const Delivery& made);
    void NoteView();
};

} // namespace Orvik::Tests
