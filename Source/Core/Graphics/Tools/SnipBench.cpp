#include "Core/Graphics/Tools/SnipBench.h"

#include "Core/Graphics/Tools/SnipBenchInput.h"
#include "Core/Graphics/Tools/Truncate.h"
#include "Core/System/Device/Cursor/Cursor.h"
#include "Core/System/Error/Assertion.h"
#include "Core/System/Log/Site/LogSite.h"
#include "Core/System/Time/Timestamp.h"
#include "Core/System/Time/Trace.h"

#include <algorithm>
#include <utility>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Desktop::KeyCode;
using System::Math::Point;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;

namespace Log = System::Log;

constexpr Log::Context s_context{Log::StreamID::Graphics};

constexpr std::uint16_t s_startMagnification = 4;
constexpr float s_minMagnification = 2.0F;

/// An id of 0 stands for no object.
template <typename ObjectRenderer>
void RemoveObject(ObjectRenderer& renderer, std::uint16_t& id)
{
    if (id == 0)
        return;
    renderer.Remove(id);
    id = 0;
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

/// One pixel in the direction of the key, none for other keys.
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
    if (parameters.bitmap.GetSize() != 0)
    {
        m_capture = std::move(parameters.bitmap);
    }
    else if (!GetDisplayCapture(context, renderer, parameters.window))
    {
        Log::Write(s_context, Log::MessageTypeID::Error, "Failed to get display capture.");
        return;
    }
    if (!Setup(context, renderer))
        Log::Write(s_context, Log::MessageTypeID::Error, "Failed to setup snipping tool.");
}

bool SnipBench::Setup(ToolContext& context, Renderer::Renderer& renderer)
{
    const Renderer::Renderer::ScreenSize& screenSize = renderer.GetScreenSize();
    const System::Time::TraceScope step("tool set-up");
    m_startTime = System::Time::GetSystemTicks();
    m_windowWidth = static_cast<std::uint16_t>(Truncate(screenSize.width));
    m_windowHeight = static_cast<std::uint16_t>(Truncate(screenSize.height));
    if (!CanShowCapture())
        return false;

    ChooseMagnifierSize();
    ChooseDisplayScale();
    MoveCursor(ToWindowLocal(context));
    UpdateCaptureTexture(renderer);

    RemoveSelectionLine(renderer);
    m_polygonModeData.points.clear();
    CreateSelectionLine(renderer);

    m_snipMode = SnipMode::Rectangle;
    m_snipState = SnipState::Ready;
    ChangeMagnifier(renderer, s_startMagnification);
    UpdateMagnifier(renderer);
    return true;
}

// Neither a surface without pixels nor rows that are longer than their bitmap's memory can be drawn.
bool SnipBench::CanShowCapture() const
{
    const std::uint8_t bits = m_capture.GetBitsPerPixel();
    const bool hasColours = bits == 24 || bits == 32;
    const bool hasWholeRows = m_capture.GetStride() == std::uint32_t{m_capture.GetWidth()} * bits / 8;
    return m_windowWidth > 0 && m_windowHeight > 0 && m_capture.GetSize() > 0 && hasColours && hasWholeRows;
}

void SnipBench::Update(ToolContext& context, Renderer::Renderer& renderer)
{
    if (m_snipState == SnipState::Inactive || context.type == ToolEventType::None)
        return;

    UpdateZoom(context, renderer);
    UpdateCursorKeys(context);
    switch (m_snipMode)
    {
    case SnipMode::Rectangle:
        UpdateRectangleMode(context, renderer);
        break;
    case SnipMode::Polygon:
        UpdatePolygonMode(context, renderer);
        break;
    }
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

    // On a small window with a large capture the upper limit lies below the least zoom; the least zoom counts.
    magnification = std::max(magnification, s_minMagnification);
    ChangeMagnifier(renderer, static_cast<std::uint16_t>(Truncate(magnification)));
    UpdateMagnifier(renderer);
}

// Moves the pointer alone. The cursor follows when the system reports that the pointer moved.
void SnipBench::UpdateCursorKeys(const ToolContext& context) const
{
    if (context.type != ToolEventType::Key || !context.pressed)
        return;
    const Point step = GetStep(context.key);
    if (step == Point{0, 0})
        return;

    const Point target = {std::clamp(m_cursorX + step.x, 0, m_windowWidth - 1),
                          std::clamp(m_cursorY + step.y, 0, m_windowHeight - 1)};
    if (target == Point{m_cursorX, m_cursorY})
        return;
    const Point origin = GetDisplayOrigin(context);
    System::Device::Cursor::SetPosition({target.x + origin.x, target.y + origin.y});
}

bool SnipBench::HasArea(const System::Math::Rectangle& bounds)
{
    return bounds.GetWidth() > 0 && bounds.GetHeight() > 0;
}

bool SnipBench::Deliver(System::Math::Rectangle& bounds, std::vector<Point>* polygon)
{
    System::Multimedia::Bitmap snip;
    if (m_cropToSelection)
    {
        const System::Time::TraceScope step("crop");
        snip = m_capture.Crop(bounds.left, bounds.top, bounds.GetWidth(), bounds.GetHeight());
    }

    Result result{m_startTime, &m_capture, &snip, &bounds, polygon};
    const bool goesOn = onResult(result);
    return goesOn && m_snipState != SnipState::Inactive; // the receiver may have called `End`
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
    RemoveSelectionLine(renderer);
    switch (m_snipMode)
    {
    case SnipMode::Rectangle:
        m_rectangleModeData = {};
        break;
    case SnipMode::Polygon:
        m_polygonModeData.points.clear();
        break;
    }

    RemoveObject(renderer.GetTextureRenderer(), m_magnifierTexture);
    for (std::uint16_t& line : m_crosshairLines)
        RemoveObject(renderer.GetLineRenderer(), line);
    for (std::uint16_t& line : m_magnifierDividers)
        RemoveObject(renderer.GetLineRenderer(), line);
    RemoveObject(renderer.GetTextRenderer(), m_magnificationLabel);
    RemoveObject(renderer.GetTextRenderer(), m_coordinatesLabel);
    RemoveObject(renderer.GetTextureRenderer(), m_captureTexture);

    m_snipState = SnipState::Inactive;
    m_magnification = 1;
    m_windowWidth = 0;
    m_windowHeight = 0;
    m_displayScale = 1.0F;
}

} // namespace Orvik::Graphics::Tools
