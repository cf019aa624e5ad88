#include "Core/System/Device/Cursor/CursorFailure.h"

#include "Core/System/Log/Site/LogSite.h"

namespace Orvik::System::Device::Cursor
{
namespace
{

constexpr Log::Context s_context{Log::StreamID::System};

} // namespace

bool ReportFailure(std::string_view operation, std::string_view text)
{
    Log::Write(s_context, Log::MessageTypeID::Error, operation, " failed: ", text, ".");
    return false;
}

} // namespace Orvik::System::Device::Cursor
