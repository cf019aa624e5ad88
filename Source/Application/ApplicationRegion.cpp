// A selection that the configuration has made: delivered at once, without an overlay.
#include "Application/Application.h"

#include "Application/ReturnCodes.h"
#include "Core/Graphics/Tools/DisplayPicture.h"
#include "Core/System/Desktop/DisplayCache.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Time/Timestamp.h"
#include "Core/System/Time/Trace.h"

#include <chrono>
#include <optional>
#include <utility>

namespace Orvik::SnipBench
{
namespace
{

namespace Log = System::Log;
using System::Math::Rectangle;
using System::Multimedia::Bitmap;

/// The region in the picture. Empty if it has no pixels, or not all of them are the picture's.
std::optional<Rectangle> FindArea(const RegionChoice& region, const Bitmap& picture)
{
    const std::int64_t width = picture.GetWidth();
    const std::int64_t height = picture.GetHeight();
    if (region.isWhole)
        return Rectangle{0, 0, picture.GetWidth(), picture.GetHeight()};
    const bool hasArea = region.width > 0 && region.height > 0;
    const bool isWithin = region.x >= 0 && region.y >= 0 && region.x < width && region.y < height &&
                          region.width <= width - region.x && region.height <= height - region.y;
    if (!hasArea || !isWithin)
        return std::nullopt;
    return Rectangle{static_cast<std::int32_t>(region.x), static_cast<std::int32_t>(region.y),
                     static_cast<std::int32_t>(region.x + region.width),
                     static_cast<std::int32_t>(region.y + region.height)};
}

} // namespace

std::string_view Application::RunRegion(Bitmap picture)
{
    const System::Time::TraceScope step("region");
    if (picture.GetSize() == 0 && !ChooseDisplay())
        return ReturnCodeName::InitializeSystemsFailed;
    WaitBeforeCapture();
    if (!m_running)
        return ReturnCodeName::Success;
    if (picture.GetSize() == 0 &&
        !Graphics::Tools::CaptureDisplay(*m_displaySystem->GetDisplay(m_displayId), nullptr, picture))
    {
        if (!m_running) // asked to end while a portal was asking a person
            return ReturnCodeName::Success;
        Log::Write(Log::s_graphics, Log::MessageTypeID::Error, "Failed to get display capture.");
        return ReturnCodeName::InitializeSystemsFailed;
    }
    return DeliverRegion(picture) ? ReturnCodeName::Success : ReturnCodeName::WrongParameters;
}

void Application::WaitBeforeCapture()
{
    std::unique_lock lock(m_delayMutex);
    m_delayCondition.wait_for(lock, std::chrono::milliseconds(m_delay), [this] { return !m_running; });
}

bool Application::DeliverRegion(Bitmap& picture)
{
    const RegionChoice& region = *m_settings->m_region;
    std::optional<Rectangle> bounds = FindArea(region, picture);
    if (!bounds)
    {
        Log::Write(Log::s_snipBench, Log::MessageTypeID::Error, "The region (", region.x, ",", region.y, " ",
                   region.width, "x", region.height, ") doesn't lie within the picture of ", picture.GetWidth(), "x",
                   picture.GetHeight(), " pixels.");
        return false;
    }
    Bitmap snip;
    if (!m_annotate)
        snip = picture.Crop(bounds->left, bounds->top, bounds->GetWidth(), bounds->GetHeight());
    const Graphics::Tools::ToolSwitches switches = MakeSwitches();
    const std::string* const label = switches.labels.empty() ? nullptr : &switches.labels.front();
    Graphics::Tools::SnipBench::Result result{
        System::Time::GetSystemTicks(), &picture, &snip, &*bounds, nullptr, label};
    OnResult(result);
    return true;
}

} // namespace Orvik::SnipBench
