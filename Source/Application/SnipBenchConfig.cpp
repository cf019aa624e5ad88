#include "Application/SnipBenchConfig.h"

#include <rapidjson/document.h>

namespace Orvik::SnipBench
{

using Graphics::Tools::SnipMode;

void SnipBenchConfig::SetDefaults()
{
    m_mode = SnipMode::Rectangle;
}

bool SnipBenchConfig::Load(const rapidjson::Value* section)
{
    if (section == nullptr || !section->IsObject())
        return true;
    const auto mode = section->FindMember("mode");
    if (mode == section->MemberEnd() || !mode->value.IsString())
        return true;
    const std::string_view name(mode->value.GetString(), mode->value.GetStringLength());
    if (name == "Rectangle")
        m_mode = SnipMode::Rectangle;
    else if (name == "Polygon")
        m_mode = SnipMode::Polygon;
    return true;
}

} // namespace Orvik::SnipBench
