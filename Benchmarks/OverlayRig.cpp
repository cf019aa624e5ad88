#include "Benchmarks/OverlayRig.h"

#include "Core/Graphics/Renderer/RenderItems.h"
#include "Core/System/Desktop/DisplayCache.h"
#include "Core/System/Desktop/KeyCode.h"
#include "Tests/Support/NullDesktop.h"

#include <cstring>
#include <stdexcept>
#include <utility>

namespace Orvik::Benchmarks
{
namespace
{

using System::Device::Display::DisplayCache;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;

constexpr auto s_window = Desktops::NativeWindow{1};

template <typename Objects>
void AppendVisible(const Objects& objects, const Graphics::Renderer::SurfaceSpace& space,
                   std::vector<Graphics::Raster::Item>& items)
{
    for (const auto& object : objects)
    {
        if (object.visible)
            AppendItems(object, space, items);
    }
}

} // namespace

System::Multimedia::Bitmap MakeStripes(std::uint16_t width, std::uint16_t height)
{
    System::Multimedia::Bitmap picture(width, height, 32);
    std::uint8_t* const first = picture.GetPixels();
    for (std::uint16_t index = 0; index < picture.GetStride(); ++index)
        first[index] = index % 4 == 3 ? 255 : static_cast<std::uint8_t>(index * 5);
    for (std::size_t y = 1; y < height; ++y)
        std::memcpy(first + y * picture.GetStride(), first, picture.GetStride());
    return picture;
}

OverlayRig::OverlayRig(std::uint16_t width, std::uint16_t height, bool isSelecting)
    : Application(L"OverlayRig"), m_width(width), m_height(height)
{
    Tests::NullDesktop::GetInstance().Reset();
    Desktops::SetDesktop(Tests::NullDesktop::GetInstance());
    System::Device::Display::DisplayDescriptor display;
    display.width = width;
    display.height = height;
    Tests::NullDesktop::GetInstance().displays.push_back(display);
    m_displaySystem = {new DisplayCache, [](DisplayCache* system) { delete system; }};
    m_renderer.SetPainter({Desktops::SurfaceKind::Pixels, true, "measured"});
    if (!m_displaySystem->Initialize(nullptr) || !m_renderer.Initialize(s_window, "OverlayRig"))
        throw std::runtime_error("The overlay doesn't come up.");
    m_renderer.Resize(s_window, width, height);

    m_tool.findDisplay = [this](std::uint16_t id) { return m_displaySystem->GetDisplay(id); };
    Graphics::Tools::SnipBench::Parameters parameters;
    parameters.bitmap = MakeStripes(width, height);
    ToolContext context;
    context.displayIds = {1, 1};
    m_tool.Start(context, std::move(parameters), m_renderer);
    if (isSelecting)
    {
        Move();
        context.type = ToolEventType::MouseButton;
        context.pressed = true;
        context.leftButton = true;
        Send(context);
        Move();
        if (m_tool.GetRectangle().width == 0)
            throw std::runtime_error("Nothing is being selected.");
    }
    Render();
}

OverlayRig::~OverlayRig()
{
    m_renderer.Shutdown(s_window);
}

void OverlayRig::Send(ToolContext context)
{
    context.displayIds = {1, 1};
    m_tool.Update(context, m_renderer);
}

void OverlayRig::Move()
{
    constexpr int margin = 100;
    ++m_step;
    ToolContext context;
    context.type = ToolEventType::MouseMove;
    context.x = margin + m_step * 7 % (m_width / 2);
    context.y = margin + m_step * 5 % (m_height / 2);
    Send(context);
}

void OverlayRig::Zoom()
{
    using System::Desktop::KeyCode;
    ToolContext context;
    context.type = ToolEventType::Key;
    context.pressed = true;
    context.key = static_cast<std::uint8_t>(++m_step % 2 == 0 ? KeyCode::Equals : KeyCode::Minus);
    Send(context);
}

void OverlayRig::Render()
{
    m_renderer.Render(s_window);
}

std::vector<Graphics::Raster::Item> OverlayRig::MakeItems()
{
    const Graphics::Renderer::SurfaceSpace space{
        static_cast<float>(m_width), static_cast<float>(m_height),
        System::Math::Matrix4::Orthographic(static_cast<float>(m_width), static_cast<float>(m_height))};
    std::vector<Graphics::Raster::Item> items;
    m_renderer.GetTextureRenderer().CollectItems(space, items);
    AppendVisible(m_renderer.GetLineRenderer().GetObjects(), space, items);
    for (const Graphics::Renderer::Text& text : m_renderer.GetTextRenderer().GetObjects())
    {
        if (text.visible)
            AppendItems(text, m_renderer.GetTextRenderer(), space, items);
    }
    return items;
}

} // namespace Orvik::Benchmarks
