#include "Desktops/Wayland/CaptureContext.h"

#include "Core/System/Log/LogSite.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Desktops/Wayland/BusCapture.h"
#include "Desktops/Wayland/ImageCopyCapture.h"
#include "Desktops/Wayland/OutputTransform.h"
#include "Desktops/Wayland/Session.h"
#include "Desktops/Wayland/WlrScreenCapture.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// How long other programs get to draw what a hidden window leaves open: six frames at 60 Hz.
constexpr std::int64_t s_repaintNanoseconds = 100'000'000;

std::size_t GetBytes(const System::Math::Rectangle& area)
{
    return std::size_t{area.GetWidth()} * area.GetHeight() * s_pixelBytes;
}

/// The display that has most of the region; null if none has any.
const Output* FindOutput(const Globals& globals, const System::Math::Rectangle& region)
{
    const Output* found = nullptr;
    std::int64_t most = 0;
    for (const std::unique_ptr<Output>& output : globals.GetOutputs())
    {
        const System::Math::Rectangle area = output->GetDescription().GetArea();
        if (area == region)
            return output.get();
        const System::Math::Rectangle common = System::Math::Intersect(area, region);
        const std::int64_t width = std::max(common.right - common.left, 0);
        const std::int64_t pixels = width * std::max(common.bottom - common.top, 0);
        if (pixels > most)
        {
            most = pixels;
            found = output.get();
        }
    }
    return found;
}

} // namespace

std::vector<std::unique_ptr<ScreenCapture>> MakeScreenCaptures(Session& session)
{
    std::vector<std::unique_ptr<ScreenCapture>> ways;
    ways.push_back(std::make_unique<ImageCopyCapture>(session));
    ways.push_back(std::make_unique<WlrScreenCapture>(session));
    // A run that is asked to end doesn't wait for the user's answer, nor does one without a compositor.
    ways.push_back(std::make_unique<BusCapture>(
        session, [&session]
        { return !session.connection->Dispatch(0) || (session.isEnding != nullptr && session.isEnding()); }));
    return ways;
}

CaptureContext::CaptureContext(std::shared_ptr<Session> session) : m_session(std::move(session))
{
}

CaptureContext::~CaptureContext() = default;

bool CaptureContext::Initialize(const System::Math::Rectangle& region)
{
    if (m_session == nullptr || !m_session->connection->IsUsable())
        return false;
    m_region = region;
    m_ways = MakeScreenCaptures(*m_session);
    return true;
}

void CaptureContext::AwaitRepaint()
{
    if (m_session != nullptr && m_session->connection->Roundtrip())
        System::Time::Sleep(s_repaintNanoseconds);
}

Failure CaptureContext::CopyScreen()
{
    if (m_session == nullptr || !m_session->connection->IsUsable())
        return "No connection to the compositor (0)";
    const auto way = std::find_if(m_ways.begin(), m_ways.end(),
                                  [](const std::unique_ptr<ScreenCapture>& each) { return each->IsOffered(); });
    if (way == m_ways.end())
        return "The compositor offers no way to take a picture of a display";
    System::Log::Write(System::Log::s_system, System::Log::MessageTypeID::Verbose,
                       "The picture of the display is taken by ", (*way)->GetName(), ".");
    return ReadOutput(**way);
}

Failure CaptureContext::ReadOutput(ScreenCapture& way)
{
    const Output* const output = FindOutput(m_session->globals, m_region);
    if (output == nullptr)
        return "The display is gone";
    const System::Math::Rectangle area = output->GetDescription().GetArea();
    SharedMemory* memory = m_session->lentMemory.Borrow(GetBytes(area));
    if (memory == nullptr)
    {
        memory = &m_picture;
        if (m_picture.GetSize() != GetBytes(area) && !m_picture.Create(GetBytes(area)))
            return "There is no memory for the picture of the display";
    }
    CaptureTarget target{*memory, area.GetWidth(), area.GetHeight()};
    if (Failure failure = way.Read(*output, target))
        return failure;
    m_delivered = memory->GetBytes();
    if (area != m_region)
        CutRegion(*memory, area);
    return std::nullopt;
}

void CaptureContext::CutRegion(const SharedMemory& picture, const System::Math::Rectangle& display)
{
    const System::Math::Rectangle common = System::Math::Intersect(display, m_region);
    const std::size_t rowBytes = static_cast<std::size_t>(common.right - common.left) * s_pixelBytes;
    const auto find = [](const System::Math::Rectangle& area, std::int32_t x, std::int32_t y)
    {
        return (static_cast<std::size_t>(y - area.top) * area.GetWidth() + static_cast<std::size_t>(x - area.left)) *
               s_pixelBytes;
    };
    m_cut.assign(GetBytes(m_region), 0);
    for (std::int32_t row = common.top; row < common.bottom; ++row)
        std::memcpy(m_cut.data() + find(m_region, common.left, row),
                    picture.GetBytes() + find(display, common.left, row), rowBytes);
    m_delivered = m_cut.data();
}

System::Types::Buffer<const unsigned char> CaptureContext::GetPixels() const
{
    return {static_cast<const unsigned char*>(m_delivered), GetBytes(m_region)};
}

} // namespace Orvik::Desktops::Wayland
