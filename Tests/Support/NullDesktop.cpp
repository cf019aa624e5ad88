#include "Tests/Support/NullDesktop.h"

#include "Tests/Support/NullCapture.h"
#include "Tests/Support/NullPixels.h"
#include "Tests/Support/NullWindow.h"
#include "Tests/Support/RecordingSurface.h"

namespace Orvik::Tests
{
namespace
{

constexpr const char* s_refusal = "Refused (0)";

} // namespace

NullDesktop& NullDesktop::GetInstance()
{
    static NullDesktop s_instance;
    return s_instance;
}

bool NullDesktop::PrepareDisplays(const System::Log::Context& /*log*/)
{
    return true;
}

Desktops::DisplayList NullDesktop::ListDisplays()
{
    return {displays, activeDisplayId, std::nullopt};
}

Desktops::GraphicsCard NullDesktop::FindGraphicsCard()
{
    if (hasGraphicsCard)
        return {true, "the null desktop has a graphics card"};
    return {false, "the null desktop has no graphics card"};
}

std::unique_ptr<Desktops::DesktopWindow> NullDesktop::MakeWindow(System::Desktop::Window& owner)
{
    return std::make_unique<NullWindow>(owner);
}

std::unique_ptr<Desktops::PlatformCaptureContext> NullDesktop::MakeCaptureContext()
{
    return std::make_unique<NullCapture>();
}

std::unique_ptr<Desktops::PixelMemory> NullDesktop::MakePixelMemory()
{
    return std::make_unique<NullPixels>();
}

std::unique_ptr<Desktops::OpenGLSurface> NullDesktop::MakeOpenGLSurface()
{
    return std::make_unique<RecordingSurface>();
}

Desktops::Failure NullDesktop::ReadPosition(System::Math::Point& position)
{
    if (cursorFails)
        return s_refusal;
    position = cursorPosition;
    return std::nullopt;
}

Desktops::Failure NullDesktop::Move(const System::Math::Point& position)
{
    if (cursorFails)
        return s_refusal;
    cursorPosition = position;
    cursorMoves.push_back(position);
    return std::nullopt;
}

} // namespace Orvik::Tests
