#include "Core/Graphics/Tools/SnipBench.h"

#include "Core/Graphics/Tools/SnipBenchInput.h"
#include "Core/Graphics/Tools/Truncate.h"
#include "Core/System/Desktop/Cursor.h"
#include "Core/System/Error/Assertion.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Time/Timestamp.h"
#include "Core/System/Time/Trace.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Desktop::KeyCode;
using System::Device::Display::DisplayDescriptor;
using System::Math::Point;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;

namespace Log = System::Log;

constexpr std::uint16_t s_startMagnification = 4;
constexpr float s_minMagnification = 2.0F;

using LabelText = std::array<char, 128>;

// A surface without pixels can't be drawn, nor rows that are longer than their bitmap's memory.
bool CanShow(const System::Multimedia::Bitmap& capture, Size window)
{
    const std::uint8_t bits = capture.GetBitsPerPixel();
    const bool hasColours = bits == 24 || bits == 32;
    const bool hasWholeRows = capture.GetStride() == std::uint32_t{capture.GetWidth()} * bits / 8;
    return window.width > 0 && window.height > 0 && capture.GetSize() > 0 && hasColours && hasWholeRows;
}

bool IsZoomIn(const ToolContext& context)
{
    const bool isKey = IsKey(context, KeyCode::NumpadAdd) || IsKey(context, KeyCode::Equals);
    return context.wheelDelta > 0.0F || (context.pressed && isKey);
}

bool IsZoomOut(const ToolContext& context)
{
    const bool isKey = IsKey(context, KeyCode::NumpadSubtract) || IsKey(context, KeyCode::Minus);
    return context.wheelDelta < 0.0F || (context.pressed && isKey);
}

/// One pixel in the direction of the key, nothing for other keys.
Point GetStep(std::uint8_t key)
{
    const auto isOneOf = [key](KeyCode first, KeyCode second)
    { return key == static_cast<std::uint8_t>(first) || key == static_cast<std::uint8_t>(second); };

    if (isOneOf(KeyCode::Up, KeyCode::W))
        return {0, -1};
    if (isOneOf(KeyCode::Down, KeyCode::S))
        return {0, 1};
    if (isOneOf(KeyCode::Left, KeyCode::A))
        return {-1, 0};
    if (isOneOf(KeyCode::Right, KeyCode::D))
        return {1, 0};
    return {0, 0};
}

} // namespace

void SnipBench::Start(ToolContext& context, Parameters parameters, Renderer::Renderer& renderer)
{
    ORVIK_ASSERT(m_snipState == SnipState::Inactive, "Snipping tool is already active.");

    m_cropToSelection = parameters.cropToSelection;
    m_switches = std::move(parameters.switches);
    if (parameters.bitmap.GetSize() != 0)
    {
        m_capture = std::move(parameters.bitmap);
    }
    else if (!GetDisplayCapture(context, renderer, parameters.window))
    {
        Log::Write(Log::s_graphics, Log::MessageTypeID::Error, "Failed to get display capture.");
        return;
    }
    if (!Setup(context, renderer))
        Log::Write(Log::s_graphics, Log::MessageTypeID::Error, "Failed to setup snipping tool.");
}

bool SnipBench::Setup(ToolContext& context, Renderer::Renderer& renderer)
{
    const Renderer::Renderer::ScreenSize& screenSize = renderer.GetScreenSize();
    const System::Time::TraceScope step("tool set-up");
    m_startTime = System::Time::GetSystemTicks();
    m_windowWidth = static_cast<std::uint16_t>(Truncate(screenSize.width));
    m_windowHeight = static_cast<std::uint16_t>(Truncate(screenSize.height));
    const SnipView unscaled = GetView();
    if (!CanShow(m_capture, unscaled.window))
        return false;

    m_magnifierWidth = ChooseMagnifierSide(m_windowHeight);
    m_magnifierHeight = m_magnifierWidth;
    m_displayScale = ChooseDisplayScale(unscaled.window, unscaled.capture);
    const Point pointer = ToWindowLocal({context.x, context.y}, GetDisplayOrigin(context));
    m_edgeReserve.Begin(pointer);
    MoveCursor(pointer);
    KeepEdgeReserve(context);
    UpdateCaptureTexture(renderer);

    m_selectionLine.Remove(renderer.GetLineRenderer());
    m_polygonModeData.points.clear();
    m_selectionLine.Create(renderer.GetLineRenderer());
    if (m_switches.contrast)
        m_selectionLine.CreateEdge(renderer.GetLineRenderer());

    m_snipMode = SnipMode::Rectangle;
    m_snipState = SnipState::Ready;
    ChangeMagnifier(renderer, s_startMagnification);
    m_aids.Begin(m_switches, GetView(), renderer);
    UpdateMagnifier(renderer);
    return true;
}

void SnipBench::Update(ToolContext& context, Renderer::Renderer& renderer)
{
    if (m_snipState == SnipState::Inactive || context.type == ToolEventType::None)
        return;

    UpdateZoom(context, renderer);
    UpdateCursorKeys(context);
    UpdateAidKeys(context, renderer);
    switch (m_snipMode)
    {
    case SnipMode::Rectangle:
        UpdateRectangleMode(context, renderer);
        break;
    case SnipMode::Polygon:
        UpdatePolygonMode(context, renderer);
        break;
    }
    KeepEdgeReserve(context);
}

void SnipBench::UpdateZoom(const ToolContext& context, Renderer::Renderer& renderer)
{
    if (context.type != ToolEventType::MouseWheel && context.type != ToolEventType::Key)
        return;

    float magnification = m_magnification;
    const float magnifierWidth = m_magnifierWidth;
    if (IsZoomIn(context))
        magnification = std::min(magnification * 2.0F, magnifierWidth * m_displayScale);
    else if (IsZoomOut(context))
        magnification *= 0.5F;
    else
        return;

    // On a small window with a large capture the upper limit is below the least zoom; the least zoom wins.
    magnification = std::max(magnification, s_minMagnification);
    ChangeMagnifier(renderer, static_cast<std::uint16_t>(Truncate(magnification)));
    UpdateMagnifier(renderer);
}

// Moves only the pointer. The cursor follows when the system reports that the pointer moved.
void SnipBench::UpdateCursorKeys(const ToolContext& context) const
{
    if (context.type != ToolEventType::Key || !context.pressed)
        return;
    const Point step = GetStep(context.key);
    if (step == Point{0, 0})
        return;

    const std::int32_t beyond = ReachesBeyond() ? 1 : 0;
    const Point target = {std::clamp(m_cursorX + step.x, 0, m_windowWidth - 1 + beyond),
                          std::clamp(m_cursorY + step.y, 0, m_windowHeight - 1 + beyond)};
    if (target != GetCursor())
        SetPointer(context, m_edgeReserve.ToPointer(target));
}

void SnipBench::SetPointer(const ToolContext& context, Point position) const
{
    const Point origin = GetDisplayOrigin(context);
    System::Device::Cursor::SetPosition({position.x + origin.x, position.y + origin.y});
}

void SnipBench::KeepEdgeReserve(const ToolContext& context)
{
    if (ReachesBeyond() && m_edgeReserve.Follow(GetCursor(), GetWindowSize()))
        SetPointer(context, m_edgeReserve.ToPointer(GetCursor()));
}

void SnipBench::MoveCursor(Point position)
{
    const Point cursor = ReachesBeyond() ? ClampBeyondImage(GetView(), position) : ClampToImage(GetView(), position);
    m_cursorX = cursor.x;
    m_cursorY = cursor.y;
}

std::optional<Point> SnipBench::FindMove(const ToolContext& context)
{
    if (context.type != ToolEventType::MouseMove)
        return std::nullopt;
    const Point pointer = ToWindowLocal({context.x, context.y}, GetDisplayOrigin(context));
    const Point position = m_edgeReserve.ToCursor(pointer, GetWindowSize());
    return position != GetCursor() ? std::optional(position) : std::nullopt;
}

const DisplayDescriptor* SnipBench::FindDisplay(std::uint16_t id) const
{
    return findDisplay ? findDisplay(id) : nullptr;
}

Point SnipBench::GetDisplayOrigin(const ToolContext& context) const
{
    const DisplayDescriptor* const display = FindDisplay(context.displayIds[1]);
    if (display == nullptr)
        return {0, 0};

    const DisplayDescriptor* const host = display->hostDisplayId != System::Device::Display::InvalidDisplayId
                                              ? FindDisplay(display->hostDisplayId)
                                              : nullptr;
    if (host == nullptr)
        return {display->x, display->y};
    return {display->x + host->x, display->y + host->y};
}

SnipView SnipBench::GetView() const
{
    return {GetWindowSize(), {m_capture.GetWidth(), m_capture.GetHeight()}, m_displayScale};
}

MagnifierSize SnipBench::GetMagnifier() const
{
    return {{m_magnifierWidth, m_magnifierHeight}, {m_regionWidth, m_regionHeight}};
}

void SnipBench::ChangeMagnifier(Renderer::Renderer& renderer, std::uint16_t magnification)
{
    if (magnification == m_magnification)
        return;
    ORVIK_ASSERT(magnification != 0, "Magnification must be greater than zero.");
    ORVIK_ASSERT(magnification % 2 == 0, "Magnification must be a power of two.");
    if (magnification == 0 || m_snipState == SnipState::Inactive)
        return;

    m_magnification = magnification;
    m_regionWidth = GetRegionSide(m_magnifierWidth, magnification);
    m_regionHeight = GetRegionSide(m_magnifierHeight, magnification);
    CreateMagnifierObjects(renderer);
}

void SnipBench::CreateMagnifierObjects(Renderer::Renderer& renderer)
{
    const MagnifierSize magnifier = GetMagnifier();
    m_magnifierTexture.Create(magnifier, m_capture, m_displayScale, renderer);
    m_crosshairLines.Fit(GetWindowSize(), renderer.GetLineRenderer());
    m_magnifierDividers.Fit(magnifier.window, renderer.GetLineRenderer());

    if (m_switches.contrast)
    {
        m_crosshairLines.FitEdges(GetWindowSize(), renderer.GetLineRenderer());
        m_coordinatesLabel.CreateEdge(renderer);
        m_magnificationLabel.CreateEdge(renderer);
    }
    m_coordinatesLabel.Create("0, 0", renderer);
    m_magnificationLabel.Create("x0", renderer);
    LabelText text = {};
    std::snprintf(text.data(), text.size(), "x%d", m_magnification);
    m_magnificationLabel.SetText(text.data(), renderer);
}

void SnipBench::UpdateMagnifier(Renderer::Renderer& renderer)
{
    const SnipView view = GetView();
    const MagnifierSize magnifier = GetMagnifier();
    const Point cursor = GetCursor();
    const Point position = GetImagePosition(view, cursor);
    const MagnifierPlace place = PlaceMagnifier(view.window, magnifier.window, cursor);
    m_magnifierTexture.Show(magnifier, place, position, m_capture, view, renderer);
    m_magnifierDividers.Move(place, view.window, renderer.GetLineRenderer());
    m_crosshairLines.Move(cursor, view.window, renderer.GetLineRenderer());

    Renderer::TextRenderer& texts = renderer.GetTextRenderer();
    const float height = GetLabelHeight(place.margin);
    const float scale = Renderer::TextRenderer::GetScale(static_cast<std::uint16_t>(height));
    const auto top = static_cast<float>(m_windowHeight - place.top);
    LabelText text = {};
    std::snprintf(text.data(), text.size(), "%d, %d", position.x, position.y);
    m_coordinatesLabel.SetText(text.data(), renderer);
    m_coordinatesLabel.Place(place.left, top, scale, texts);
    m_magnificationLabel.PlaceFlushRight(place.left + static_cast<float>(m_magnifierWidth), top, scale, texts);
    m_aids.FollowMagnifier(place, magnifier.window, view.window, renderer);
}

bool SnipBench::UpdateCaptureTexture(Renderer::Renderer& renderer)
{
    return m_captureTexture.Update(m_capture, GetView(), renderer);
}

bool SnipBench::Deliver(System::Math::Rectangle& bounds, std::vector<Point>* polygon, Renderer::Renderer& renderer)
{
    const ShownSelection shown = GetDeliveredSelection();
    System::Multimedia::Bitmap snip;
    if (m_cropToSelection)
    {
        const System::Time::TraceScope step("crop");
        snip = m_capture.Crop(bounds.left, bounds.top, bounds.GetWidth(), bounds.GetHeight());
    }

    Result result{m_startTime, &m_capture, &snip, &bounds, polygon, m_aids.GetLabel()};
    const bool wantsMore = onResult(result);
    const bool goesOn = wantsMore && m_snipState != SnipState::Inactive; // the receiver may have called `End`
    if (goesOn && result.isKept)
        m_aids.Keep(shown, GetWindowSize(), SelectionColour, renderer);
    return goesOn;
}

bool SnipBench::SetMode(SnipMode mode)
{
    if (m_snipState != SnipState::Ready)
        return false;
    m_snipMode = mode;
    return true;
}

void SnipBench::End(Renderer::Renderer& renderer)
{
    m_selectionLine.Remove(renderer.GetLineRenderer());
    switch (m_snipMode)
    {
    case SnipMode::Rectangle:
        m_rectangleModeData = {};
        break;
    case SnipMode::Polygon:
        m_polygonModeData.points.clear();
        break;
    }

    m_magnifierTexture.Remove(renderer.GetTextureRenderer());
    m_crosshairLines.Remove(renderer.GetLineRenderer());
    m_magnifierDividers.Remove(renderer.GetLineRenderer());
    m_magnificationLabel.Remove(renderer.GetTextRenderer());
    m_coordinatesLabel.Remove(renderer.GetTextRenderer());
    m_captureTexture.Remove(renderer.GetTextureRenderer());
    m_aids.End(renderer);

    m_snipState = SnipState::Inactive;
    m_magnification = 1;
    m_windowWidth = 0;
    m_windowHeight = 0;
    m_displayScale = 1.0F;
}

} // namespace Orvik::Graphics::Tools
