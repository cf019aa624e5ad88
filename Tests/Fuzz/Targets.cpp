#include "Tests/Fuzz/Targets.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Orvik::Fuzz
{
namespace
{

constexpr std::array s_targets = {
    Target{"LoadPng", &LoadPng},
    Target{"LoadBmp", &LoadBmp},
    Target{"WritePng", &WritePng},
    Target{"MaskPolygon", &MaskPolygon},
    Target{"CropAndResize", &CropAndResize},
    Target{"ReadOptions", &ReadOptions},
    Target{"ReadConfiguration", &ReadConfiguration},
    Target{"ReadLoggerConfig", &ReadLoggerConfig},
    Target{"ReadGuid", &ReadGuid},
    Target{"UseTool", &UseTool},
    Target{"HearCompositor", &HearCompositor},
    Target{"HearServer", &HearServer},
};

} // namespace

std::span<const Target> GetTargets()
{
    return s_targets;
}

const Target* FindTarget(const char* name)
{
    for (const Target& target : s_targets)
        if (std::strcmp(target.name, name) == 0)
            return &target;
    return nullptr;
}

void Require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "Doesn't hold: %s\n", what);
    std::abort();
}

std::uint8_t Reader::TakeByte()
{
    if (m_input.empty())
        return 0;
    const std::uint8_t byte = m_input.front();
    m_input = m_input.subspan(1);
    return byte;
}

std::uint16_t Reader::TakeWord()
{
    const std::uint8_t low = TakeByte();
    return static_cast<std::uint16_t>(low | TakeByte() << 8);
}

std::int32_t Reader::TakeNumber()
{
    const std::uint32_t low = TakeWord();
    return static_cast<std::int32_t>(low | std::uint32_t{TakeWord()} << 16);
}

} // namespace Orvik::Fuzz
