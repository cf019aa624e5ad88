#pragma once

#include "Core/Graphics/Tools/SnipBench.h"
#include "Core/System/Runtime/Config.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace Orvik::SnipBench
{

/// A selection that needs no overlay, in pixels of the picture, as it is written.
struct RegionChoice
{
    bool isWhole = true; ///< the whole picture; the numbers don't count
    std::int64_t x = 0;
    std::int64_t y = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;

    bool operator==(const RegionChoice&) const = default;
};

/// A display by its name or its number in the log.
using DisplayChoice = std::variant<std::string, std::int64_t>;

/// What a configuration can set for the program itself: how to select, and what.
class SnipBenchConfig final : public System::Runtime::Config<SnipBenchConfig, "SnipBench Configuration", 23,
                                                             System::GUID{0x7D51C0B3E2F84A96, 0x8A1F5E60C7B4D923}>
{
public:
    static constexpr std::uint32_t s_typeID = 0x4B8E21D7;
    static constexpr std::string_view s_systemName = "SnipBench"; ///< the section's name

    /// Sets the mode to rectangles, and nothing else.
    void SetDefaults() override;

    /// Applies the section's members. One of another kind than the schema has keeps its default. Always true.
    [[nodiscard]] bool Load(const rapidjson::Value* section) override;

    Graphics::Tools::SnipMode m_mode = Graphics::Tools::SnipMode::Rectangle;
    Graphics::Tools::ToolSwitches m_switches;
    std::optional<DisplayChoice> m_display; ///< empty: the active one
    std::optional<RegionChoice> m_region;   ///< empty: the user selects
};

} // namespace Orvik::SnipBench
