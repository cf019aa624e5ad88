#pragma once

#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Tools/Crosshair.h"
#include "Core/Graphics/Tools/EdgeReserve.h"
#include "Core/Graphics/Tools/Magnifier.h"
#include "Core/Graphics/Tools/SelectionOutline.h"
#include "Core/Graphics/Tools/ShownCapture.h"
#include "Core/Graphics/Tools/SnipAids.h"
#include "Core/Graphics/Tools/SnipGeometry.h"
#include "Core/Graphics/Tools/ToolContext.h"
#include "Core/System/Multimedia/Bitmap.h"
#include "Desktops/DisplayDescriptor.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Orvik::System::Desktop
{
class Window;
} // namespace Orvik::System::Desktop

namespace Orvik::Graphics::Tools
{

enum class SnipState : std::uint8_t
{
    Inactive,  ///< not started, or ended; input is ignored
    Ready,     ///< the capture is on screen, nothing is being selected
    Selecting, ///< a rectangle is being dragged or a polygon is being placed
};

enum class SnipMode : std::uint8_t
{
    Rectangle,
    Polygon,
};

/// The interactive tool: shows a capture, lets the user select on it, and passes each selection to `onResult`. It uses
/// no window and draws nothing itself: it changes render objects. One thread.
class SnipBench
{
public:
    /// The colour of a selection's outline.
    static constexpr System::Math::Vector4 SelectionColour = SelectionOutline::Colour;

    struct Parameters
    {
        bool cropToSelection = false;
        System::Desktop::Window* window = nullptr; ///< handed on to the capture; not owned
        System::Multimedia::Bitmap bitmap;         ///< the picture to snip; empty: the display is captured
        ToolSwitches switches = {};                ///< what is added to the tool
    };

    /// One finished selection. Everything is only valid during the callback.
    struct Result
    {
        std::int64_t startTime;                    ///< ticks of the system clock when the tool was set up
        System::Multimedia::Bitmap* capture;       ///< the whole capture
        System::Multimedia::Bitmap* snip;          ///< the selection cut out, empty without cropping; may be changed
        System::Math::Rectangle* bounds;           ///< the bounding box, capture pixels
        std::vector<System::Math::Point>* polygon; ///< null for a rectangle; else the closed ring relative to bounds
        const std::string* label = nullptr;        ///< one of the labels; null without labels
        bool isKept = true;                        ///< the receiver clears it if it couldn't keep the selection
    };

    using ResultHandler = std::function<bool(Result&)>;

    /// Receives each selection; true lets the tool go on, false ends it, like an empty handler. Set before `Start`.
    ResultHandler onResult;

    using BackTaker = std::function<bool()>;

    /// Takes the last selection back that was kept; false if there is none. Only called with the switch `undo`.
    BackTaker onTakeBack;

    using DisplayFinder = std::function<const System::Device::Display::DisplayDescriptor*(std::uint16_t id)>;

    /// Returns the display of that id, or null. Without it there is no display: nothing can be captured, and screen
    /// positions are window positions. Set before `Start`.
    DisplayFinder findDisplay;

    /// Takes the parameters' picture or a capture of the context's display and shows it. The context's position is that
    /// of the pointer, in screen pixels. Without a picture the tool stays inactive, and a log line says so. An
    /// assertion failure if the tool is running.
    void Start(System::Tools::ToolContext& context, Parameters parameters, Renderer::Renderer& renderer);

    /// Handles one input.
    void Update(System::Tools::ToolContext& context, Renderer::Renderer& renderer);

    /// Removes everything from the screen. Does nothing on an inactive tool.
    void End(Renderer::Renderer& renderer);

    /// Sets the shape of the next selections. Only while the tool is `Ready`; otherwise nothing happens and the result
    /// is false. Every start sets `Rectangle`.
    bool SetMode(SnipMode mode);

    /// Sets the magnifier's zoom, an even number. 0 and odd numbers are assertion failures. Does nothing while the tool
    /// is inactive.
    void ChangeMagnifier(Renderer::Renderer& renderer, std::uint16_t magnification);

    [[nodiscard]] Size GetMagnifierSize() const { return {m_magnifierWidth, m_magnifierHeight}; }

    /// The cursor, in window pixels; within the drawn image.
    [[nodiscard]] System::Math::Point GetCursor() const { return {m_cursorX, m_cursorY}; }

    [[nodiscard]] SnipState GetState() const { return m_snipState; }
    [[nodiscard]] SnipMode GetMode() const { return m_snipMode; }

protected:
    /// Copies the display `displayIds[1]` of the context, opaque, into `m_capture`, without `window`, which may be
    /// null. False if there is no such display, if its rows are too long for a bitmap, or if the screen can't be
    /// copied; `m_capture` is unchanged then. Only a copy that was begun leaves a log line.
    [[nodiscard]] bool GetDisplayCapture(System::Tools::ToolContext& context, Renderer::Renderer& renderer,
                                         System::Desktop::Window* window);
    /// Shows `m_capture` on the surface with the cursor at the context's position, and makes the tool `Ready`. False
    /// for a surface without area and for a picture that can't be drawn: without pixels, without colours, or with rows
    /// cut short. Nothing is shown and nothing is logged then.
    [[nodiscard]] bool Setup(System::Tools::ToolContext& context, Renderer::Renderer& renderer);

    // Objects that follow the cursor.
    void CreateMagnifierObjects(Renderer::Renderer& renderer);
    void UpdateMagnifier(Renderer::Renderer& renderer);
    bool UpdateCaptureTexture(Renderer::Renderer& renderer);

    [[nodiscard]] Size GetWindowSize() const { return {m_windowWidth, m_windowHeight}; }
    [[nodiscard]] SnipView GetView() const;
    /// Repeats the first vertex at the end, and returns the ring relative to the bounds, in capture pixels.
    [[nodiscard]] std::vector<System::Math::Point> CloseRing(const System::Math::Rectangle& bounds);

    /// A polygon that is being placed, in window pixels.
    struct PolygonModeData
    {
        std::vector<System::Math::Point> points;
    };

    SnipState m_snipState = SnipState::Inactive;
    SnipMode m_snipMode = SnipMode::Rectangle;
    std::uint8_t m_controlFlag = 0; ///< bit 0 while Left Control is held; nothing reads it
    bool m_cropToSelection = false;
    std::uint16_t m_windowWidth = 0;
    std::uint16_t m_windowHeight = 0;
    std::uint16_t m_magnification = 1;
    std::uint16_t m_magnifierWidth = 256;
    std::uint16_t m_magnifierHeight = 256;
    std::uint16_t m_regionWidth = 256; ///< capture pixels that the magnifier shows, at least 1
    std::uint16_t m_regionHeight = 256;
    std::int64_t m_startTime = 0; ///< ticks of the system clock
    System::Multimedia::Bitmap m_capture;
    ShownCapture m_captureTexture;
    MagnifierPicture m_magnifierTexture;
    MagnifierCross m_magnifierDividers;
    MagnifierLabel m_magnificationLabel;
    Crosshair m_crosshairLines;
    MagnifierLabel m_coordinatesLabel;
    SelectionOutline m_selectionLine;
    ToolSwitches m_switches; ///< of the run that begins
    EdgeReserve m_edgeReserve;
    SnipAids m_aids;
    std::uint8_t m_heldKey = 0; ///< the last key that went down, until a key goes up
    std::int32_t m_cursorX = 0; ///< window pixels, y downward, within the drawn image
    std::int32_t m_cursorY = 0;
    float m_displayScale = 1.0F; ///< window pixels per capture pixel, a power of one half
    RectangleModeData m_rectangleModeData;
    PolygonModeData m_polygonModeData;

private:
    // SnipBench.cpp: the frame of the state machine.
    void UpdateZoom(const System::Tools::ToolContext& context, Renderer::Renderer& renderer);
    void UpdateCursorKeys(const System::Tools::ToolContext& context) const;
    /// Sets the pointer, in window pixels of the context's display.
    void SetPointer(const System::Tools::ToolContext& context, System::Math::Point position) const;
    /// Keeps room for a push against the display's edge, with the switch `edges`.
    void KeepEdgeReserve(const System::Tools::ToolContext& context);
    [[nodiscard]] bool ReachesBeyond() const { return m_switches.edges; }
    void MoveCursor(System::Math::Point position);
    /// The window position of a mouse move, if it differs from the cursor's.
    [[nodiscard]] std::optional<System::Math::Point> FindMove(const System::Tools::ToolContext& context);
    [[nodiscard]] const System::Device::Display::DisplayDescriptor* FindDisplay(std::uint16_t id) const;
    /// Subtracting this from a screen position on the context's display gives a window position.
    [[nodiscard]] System::Math::Point GetDisplayOrigin(const System::Tools::ToolContext& context) const;
    [[nodiscard]] MagnifierSize GetMagnifier() const;
    /// Cuts the selection out and passes it to the receiver, which has to exist. Whether the tool goes on.
    [[nodiscard]] bool Deliver(System::Math::Rectangle& bounds, std::vector<System::Math::Point>* polygon,
                               Renderer::Renderer& renderer);

    // SnipBenchAids.cpp: what a configuration adds.
    void UpdateAidKeys(const System::Tools::ToolContext& context, Renderer::Renderer& renderer);
    /// The selection that is being delivered. A polygon's ring has to be closed by then.
    [[nodiscard]] ShownSelection GetDeliveredSelection() const;
    void ShowSelectionAids(Renderer::Renderer& renderer);

    // SnipBenchRectangle.cpp: a rectangle, from the press to the release.
    void UpdateRectangleMode(System::Tools::ToolContext& context, Renderer::Renderer& renderer);
    void UpdateReadyRectangle(const System::Tools::ToolContext& context, Renderer::Renderer& renderer);
    void DragRectangle(System::Math::Point position, Renderer::Renderer& renderer);
    void FinishRectangle(Renderer::Renderer& renderer);
    void ResetRectangleMode(Renderer::Renderer& renderer);

    // SnipBenchPolygon.cpp: a polygon, click by click.
    void UpdatePolygonMode(System::Tools::ToolContext& context, Renderer::Renderer& renderer);
    void AdvancePolygon(const System::Tools::ToolContext& context, Renderer::Renderer& renderer);
    void PlaceVertex(Renderer::Renderer& renderer);
    void RemoveVertex(Renderer::Renderer& renderer);
    void FinishPolygon(System::Math::Rectangle& bounds, Renderer::Renderer& renderer);
    void ResetPolygonMode(Renderer::Renderer& renderer);
};

} // namespace Orvik::Graphics::Tools
