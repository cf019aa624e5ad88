#include "Core/Graphics/Tools/DisplayPicture.h"
#include "Core/Graphics/Tools/SnipBench.h"
#include "Core/System/Time/Trace.h"

namespace Orvik::Graphics::Tools
{

using System::Device::Display::DisplayDescriptor;

bool SnipBench::GetDisplayCapture(System::Tools::ToolContext& context, Renderer::Renderer& /*renderer*/,
                                  System::Desktop::Window* window)
{
    const System::Time::TraceScope step("capture");
    const DisplayDescriptor* const display = FindDisplay(context.displayIds[1]);
    return display != nullptr && CaptureDisplay(*display, window, m_capture);
}

} // namespace Orvik::Graphics::Tools
