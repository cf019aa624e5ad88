#include "Core/System/Types/GuidGeneration.h"

#include "Core/System/Time/MonotonicClock.h"

#include <cstdint>
#include <cstdlib>

namespace Orvik::System
{
namespace
{

constexpr std::int64_t s_nanosecondsPerMillisecond = 1'000'000;

std::uint32_t NextRandom()
{
    return static_cast<std::uint32_t>(std::rand()); // only an identifier, not a secret
}

/// Two numbers of the C library's generator in one word. The second seed also depends on the address of the stack, so
/// that two processes that start at the same moment differ.
std::uint32_t DrawTwo(std::uint32_t seed)
{
    const std::uint32_t local = seed;
    const auto address = reinterpret_cast<std::uintptr_t>(&local);
    std::srand(seed);
    const std::uint32_t first = NextRandom();
    std::srand(static_cast<std::uint32_t>(address >> 16U) ^ (local << 8U));
    const std::uint32_t second = NextRandom();
    return second | (first << 16U);
}

std::uint32_t LowWord(std::uint64_t value)
{
    return static_cast<std::uint32_t>(value);
}

} // namespace

GUID GenerateGuid()
{
    const auto begin = static_cast<std::uint64_t>(Time::GetMonotonicNanoseconds());
    const std::uint64_t word1 = DrawTwo(LowWord(begin));
    const std::uint64_t word2 = DrawTwo(LowWord(begin ^ (begin >> 16U)));
    Time::Sleep(static_cast<std::int64_t>(word1 % 5) * s_nanosecondsPerMillisecond);
    const auto end = static_cast<std::uint64_t>(Time::GetMonotonicNanoseconds());
    const std::uint64_t word3 = DrawTwo(LowWord(begin ^ end));
    const std::uint64_t word4 = DrawTwo(LowWord(end | (begin >> 16U)));

    constexpr std::uint64_t versionMask = 0xF000;
    constexpr std::uint64_t version = 0x4000;
    constexpr std::uint64_t variantMask = 0xC000'0000'0000'0000;
    constexpr std::uint64_t variant = 0x8000'0000'0000'0000;
    return {(((word2 << 32U) | word1) & ~versionMask) | version, (((word4 << 32U) | word3) & ~variantMask) | variant};
}

} // namespace Orvik::System
