#include "Application/SnipBenchConfig.h"

#include <limits>
#include <rapidjson/document.h>

namespace Orvik::SnipBench
{
namespace
{

using Graphics::Tools::SnipMode;
using Graphics::Tools::ToolSwitches;
using rapidjson::Value;

std::string GetText(const Value& value)
{
    return {value.GetString(), value.GetStringLength()};
}

const Value* FindMember(const Value& object, const char* name)
{
    const auto member = object.FindMember(name);
    return member != object.MemberEnd() ? &member->value : nullptr;
}

void LoadMode(const Value& section, SnipMode& mode)
{
    const Value* const value = FindMember(section, "mode");
    if (value == nullptr || !value->IsString())
        return;
    const std::string name = GetText(*value);
    if (name == "Rectangle")
        mode = SnipMode::Rectangle;
    else if (name == "Polygon")
        mode = SnipMode::Polygon;
}

void LoadSwitch(const Value& section, const char* name, bool& isOn)
{
    const Value* const value = FindMember(section, name);
    if (value != nullptr && value->IsBool())
        isOn = value->GetBool();
}

void LoadSwitches(const Value& section, ToolSwitches& switches)
{
    LoadSwitch(section, "size", switches.size);
    LoadSwitch(section, "bright", switches.bright);
    LoadSwitch(section, "marks", switches.marks);
    LoadSwitch(section, "undo", switches.undo);
    LoadSwitch(section, "edges", switches.edges);
    LoadSwitch(section, "toggle", switches.toggle);
    LoadSwitch(section, "hints", switches.hints);
    LoadSwitch(section, "contrast", switches.contrast);
}

void LoadLabels(const Value& section, std::vector<std::string>& labels)
{
    const Value* const value = FindMember(section, "labels");
    if (value == nullptr || !value->IsArray())
        return;
    for (const Value& item : value->GetArray())
    {
        // The schema doesn't look beyond a character zero.
        if (item.IsString() && GetText(item).find('\0') == std::string::npos)
            labels.push_back(GetText(item));
    }
}

void LoadDisplay(const Value& section, std::optional<DisplayChoice>& display)
{
    const Value* const value = FindMember(section, "display");
    if (value == nullptr)
        return;
    if (value->IsString())
        display = GetText(*value);
    else if (value->IsInt64())
        display = value->GetInt64();
    else if (value->IsUint64())
        display = std::int64_t{-1}; // no display has a number of that size
}

/// A number that is too large for 64 bits is as far outside of every picture as the largest one that isn't.
std::int64_t GetNumber(const Value& region, const char* name)
{
    const Value* const value = FindMember(region, name);
    if (value != nullptr && value->IsInt64())
        return value->GetInt64();
    return std::numeric_limits<std::int64_t>::max();
}

void LoadRegion(const Value& section, std::optional<RegionChoice>& region)
{
    const Value* const value = FindMember(section, "region");
    if (value == nullptr || !value->IsObject())
        return;
    region = RegionChoice{};
    region->isWhole = value->ObjectEmpty();
    if (region->isWhole)
        return;
    region->x = GetNumber(*value, "x");
    region->y = GetNumber(*value, "y");
    region->width = GetNumber(*value, "width");
    region->height = GetNumber(*value, "height");
}

} // namespace

void SnipBenchConfig::SetDefaults()
{
    m_mode = SnipMode::Rectangle;
    m_switches = {};
    m_display.reset();
    m_region.reset();
}

bool SnipBenchConfig::Load(const Value* section)
{
    if (section == nullptr || !section->IsObject())
        return true;
    LoadMode(*section, m_mode);
    LoadSwitches(*section, m_switches);
    LoadLabels(*section, m_switches.labels);
    LoadDisplay(*section, m_display);
    LoadRegion(*section, m_region);
    return true;
}

} // namespace Orvik::SnipBench
