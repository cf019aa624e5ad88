// The tool: each three bytes become an input, and after each the tool agrees with the model of it.
#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/System/Desktop/KeyCode.h"
#include "Desktops/Desktop.h"
#include "Tests/Fuzz/Targets.h"
#include "Tests/Support/GLRecorder.h"
#include "Tests/Support/NullDesktop.h"
#include "Tests/Support/SnipBenchProbe.h"
#include "Tests/Support/TestApplication.h"
#include "Tests/Support/ToolModel.h"

#include <array>
#include <bit>
#include <memory>

namespace Orvik::Fuzz
{
namespace
{

using Graphics::Tools::SnipBench;
using Graphics::Tools::SnipBenchProbe;
using Graphics::Tools::SnipMode;
using Graphics::Tools::SnipState;
using System::Desktop::KeyCode;
using System::Math::Point;
using System::Multimedia::Bitmap;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;
using Tests::ToolModel;

constexpr auto s_window = Desktops::NativeWindow{1};
constexpr int s_maxSteps = 400;

/// A tool on the null desktop with the model beside it.
class ToolSession
{
public:
    explicit ToolSession(Graphics::Renderer::Renderer& renderer) : m_renderer(renderer)
    {
        m_tool.onResult = [this](SnipBench::Result& result) { return OnResult(result); };
    }

    void Start(Reader& reader)
    {
        ToolModel::Beginning beginning;
        beginning.windowWidth = reader.TakeByte() % 200 + 1;
        beginning.windowHeight = reader.TakeByte() % 150 + 1;
        beginning.captureWidth = reader.TakeByte() + 1;
        beginning.captureHeight = reader.TakeByte() + 1;
        const std::uint8_t kind = reader.TakeByte();
        beginning.crops = (kind & 1) != 0;
        beginning.isPolygon = (kind & 2) != 0;
        Bitmap picture(static_cast<std::uint16_t>(beginning.captureWidth),
                       static_cast<std::uint16_t>(beginning.captureHeight),
                       static_cast<std::uint8_t>((kind & 4) != 0 ? 24 : 32));
        std::fill_n(picture.GetPixels(), picture.GetSize(), std::uint8_t{7});
        m_renderer.Resize(s_window, beginning.windowWidth, beginning.windowHeight);
        m_tool.Start(beginning.context, {beginning.crops, nullptr, std::move(picture)}, m_renderer);
        m_model.Start(beginning);
        m_tool.SetMode(beginning.isPolygon ? SnipMode::Polygon : SnipMode::Rectangle);
        Check();
    }

    void Step(Reader& reader)
    {
        const std::uint8_t kind = reader.TakeByte();
        ToolContext context = MakeInput(kind, reader);
        m_receiver = (kind & 0xF0) == 0xF0 ? ToolModel::Receiver::Stops : ToolModel::Receiver::GoesOn;
        m_hasDelivered = false;
        m_model.Update(context, m_receiver);
        m_tool.Update(context, m_renderer);
        Require(m_hasDelivered == m_model.delivery.has_value(), "a selection is delivered when the model delivers one");
        Check();
    }

    void End()
    {
        m_tool.End(m_renderer);
        m_model.End();
        Check();
        Require(m_renderer.GetLineRenderer().GetCount() == 0 && m_renderer.GetTextRenderer().GetCount() == 0 &&
                    m_renderer.GetTextureRenderer().GetCount() == 0,
                "nothing is left on the screen");
    }

    /// A line has no more points.
    [[nodiscard]] bool IsFull() const { return m_model.vertices.size() > 55; }
    [[nodiscard]] bool IsOver() const { return m_model.state == ToolModel::State::Inactive; }

private:
    [[nodiscard]] ToolContext MakeInput(std::uint8_t kind, Reader& reader) const
    {
        ToolContext context;
        const std::uint8_t first = reader.TakeByte();
        const std::uint8_t second = reader.TakeByte();
        context.type = static_cast<ToolEventType>(kind % 8 < 5 ? kind % 8 : 1);
        switch (context.type)
        {
        case ToolEventType::None:
            break;
        case ToolEventType::MouseMove:
            context.x = (kind & 8) != 0 ? m_model.cursor.x + static_cast<std::int8_t>(first) : first - 20;
            context.y = (kind & 8) != 0 ? m_model.cursor.y + static_cast<std::int8_t>(second) : second - 20;
            break;
        case ToolEventType::MouseWheel:
            context.wheelDelta = static_cast<float>(static_cast<std::int8_t>(first)) / 16.0F;
            break;
        case ToolEventType::MouseButton:
            context.leftButton = (first & 1) == 0;
            context.pressed = (first & 2) == 0;
            break;
        case ToolEventType::Key:
            context.key = second;
            context.pressed = (first & 2) == 0;
            break;
        }
        return context;
    }

    bool OnResult(SnipBench::Result& result)
    {
        m_hasDelivered = true;
        const System::Math::Rectangle& bounds = *result.bounds;
        Require(m_model.delivery.has_value(), "nothing is delivered that the model doesn't deliver");
        const ToolModel::Delivery& wanted = *m_model.delivery;
        Require(bounds.left == wanted.left && bounds.top == wanted.top && bounds.right == wanted.right &&
                    bounds.bottom == wanted.bottom,
                "the bounds are the model's");
        Require(bounds.left >= 0 && bounds.top >= 0 && bounds.right <= result.capture->GetWidth() &&
                    bounds.bottom <= result.capture->GetHeight(),
                "the bounds are inside of the capture");
        const bool isCut = result.snip->GetWidth() == bounds.right - bounds.left &&
                           result.snip->GetHeight() == bounds.bottom - bounds.top;
        Require(isCut || !m_model.crops, "the snip has the size of its bounds");
        if (result.polygon != nullptr)
            result.snip->ClearOutsidePolygon(*result.polygon, false);
        return m_receiver == ToolModel::Receiver::GoesOn;
    }

    void Check() const
    {
        const auto state = static_cast<int>(m_tool.GetState());
        Require(state >= 0 && state <= 2, "there are three states");
        Require(state == static_cast<int>(m_model.state), "the state is the model's");
        Require(m_tool.GetCursor() == Point{m_model.cursor.x, m_model.cursor.y}, "the cursor is the model's");
        Require(m_tool.GetMagnification() == m_model.zoom, "the zoom is the model's");
        Require(m_tool.GetPoints().size() == m_model.vertices.size(), "the vertices are the model's");
        Require(m_tool.GetRectangle().width == m_model.drag.width &&
                    m_tool.GetRectangle().height == m_model.drag.height,
                "the rectangle is the model's");
        const bool isActive = m_tool.GetState() != SnipState::Inactive;
        for (const std::uint16_t id : m_tool.GetIds())
            Require((id != 0) == isActive, "objects are there as long as the tool is running");
        if (!isActive)
            return;
        Require(std::has_single_bit(static_cast<unsigned>(m_tool.GetMagnification())), "the zoom is a power of two");
        const Point pixel = m_tool.ToCapture(m_tool.GetCursor().x, m_tool.GetCursor().y);
        Require(pixel.x >= 0 && pixel.y >= 0 && pixel.x <= m_model.captureWidth && pixel.y <= m_model.captureHeight,
                "the cursor is inside of the picture");
    }

    Graphics::Renderer::Renderer& m_renderer;
    SnipBenchProbe m_tool;
    ToolModel m_model;
    ToolModel::Receiver m_receiver = ToolModel::Receiver::GoesOn;
    bool m_hasDelivered = false;
};

/// Opened once: it loads the font.
Graphics::Renderer::Renderer& OpenRenderer()
{
    static Tests::TestApplication s_application;
    static Graphics::Renderer::Renderer s_renderer;
    static const bool s_isOpen = s_renderer.Initialize(s_window, "Window");
    Require(s_isOpen, "there is a renderer; the working directory has the resources");
    return s_renderer;
}

} // namespace

void UseTool(Bytes input)
{
    Desktops::SetDesktop(Tests::NullDesktop::GetInstance());
    Graphics::Renderer::Renderer& renderer = OpenRenderer();
    Tests::NullDesktop::GetInstance().Reset();
    Tests::GLRecorder::GetInstance().ClearCalls();
    ToolSession session(renderer);
    Reader reader(input);
    session.Start(reader);
    for (int step = 0; step < s_maxSteps && !reader.IsAtEnd() && !session.IsOver() && !session.IsFull(); ++step)
        session.Step(reader);
    session.End();
}

} // namespace Orvik::Fuzz
