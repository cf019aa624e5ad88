// Moves the mouse over the tool, and does nothing else in number: what a move costs is the difference of two runs under
// an instruction counter, divided by the difference of their moves (Scripts/benchmark.sh).
//
//   MouseMoves ready|selecting WIDTHxHEIGHT MOVES
#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Tools/SnipBench.h"
#include "Core/System/Device/Display/DisplayCache.h"
#include "Core/System/Platform/NullDesktop.h"
#include "Core/System/Runtime/Application.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace
{

using namespace Orvik;
using System::Device::Display::DisplayCache;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;

class BenchmarkApplication final : public System::Runtime::Application
{
public:
    BenchmarkApplication(std::uint16_t width, std::uint16_t height) : Application(L"MouseMoves")
    {
        System::Device::Display::DisplayDescriptor display;
        display.width = width;
        display.height = height;
        System::Platform::NullDesktop::GetInstance().displays.push_back(display);
        m_displaySystem = {new DisplayCache, [](DisplayCache* system) { delete system; }};
        if (!m_displaySystem->Initialize(nullptr))
            std::exit(EXIT_FAILURE);
    }
};

} // namespace

int main(int argc, char** argv)
{
    unsigned width = 0;
    unsigned height = 0;
    if (argc != 4 || std::sscanf(argv[2], "%ux%u", &width, &height) != 2)
    {
        std::fputs("usage: MouseMoves ready|selecting WIDTHxHEIGHT MOVES\n", stderr);
        return 2;
    }
    const bool isSelecting = std::string_view(argv[1]) == "selecting";
    const long moves = std::atol(argv[3]);

    const BenchmarkApplication application(static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height));
    constexpr auto window = System::Desktop::NativeWindow{1};
    Graphics::Renderer::Renderer renderer;
    if (!renderer.Initialize(window, "MouseMoves"))
        return EXIT_FAILURE;
    renderer.Resize(window, static_cast<int>(width), static_cast<int>(height));

    Graphics::Tools::SnipBench tool;
    Graphics::Tools::SnipBench::Parameters parameters;
    parameters.bitmap =
        System::Multimedia::Bitmap(static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 32);
    std::memset(parameters.bitmap.GetPixels(), 0x55, static_cast<std::size_t>(parameters.bitmap.GetSize()));
    ToolContext context;
    context.displayIds = {1, 1};
    tool.Start(context, std::move(parameters), renderer);
    if (isSelecting)
    {
        context.type = ToolEventType::MouseButton;
        tool.Update(context, renderer);
    }
    context.type = ToolEventType::MouseMove;
    for (long move = 0; move < moves; ++move)
    {
        context.x = static_cast<int>(100 + move % (width / 2));
        context.y = static_cast<int>(100 + move % (height / 2));
        tool.Update(context, renderer);
    }
    return EXIT_SUCCESS;
}
