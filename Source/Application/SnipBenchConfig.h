#pragma once

#include "Core/Graphics/Tools/SnipBench.h"
#include "Core/System/Runtime/Config.h"

#include <cstdint>
#include <string_view>

namespace Orvik::SnipBench
{

/// What a configuration can set for the program itself: how to select.
class SnipBenchConfig final : public System::Runtime::Config<SnipBenchConfig, "SnipBench Configuration", 23,
                                                             System::GUID{0x7D51C0B3E2F84A96, 0x8A1F5E60C7B4D923}>
{
public:
    static constexpr std::uint32_t s_typeID = 0x4B8E21D7;
    static constexpr std::string_view s_systemName = "SnipBench"; ///< the section's name

    /// Sets the mode to rectangles.
    void SetDefaults() override;

    /// Applies the member "mode", "Rectangle" or "Polygon". Any other value keeps the default: the schema refuses it.
    /// Always true.
    [[nodiscard]] bool Load(const rapidjson::Value* section) override;

    Graphics::Tools::SnipMode m_mode = Graphics::Tools::SnipMode::Rectangle;
};

} // namespace Orvik::SnipBench
