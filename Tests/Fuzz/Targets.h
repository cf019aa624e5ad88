#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// What is fed with bytes that mean nothing, or that were made to do harm. A target takes any input; what mustn't
/// be ends the process.
namespace Orvik::Fuzz
{

using Bytes = std::span<const std::uint8_t>;

struct Target
{
    const char* name; ///< also of its folder of seeds
    void (*run)(Bytes input);
};

[[nodiscard]] std::span<const Target> GetTargets();

/// Null if there is no such target.
[[nodiscard]] const Target* FindTarget(const char* name);

// PictureTargets.cpp
void LoadPng(Bytes input);
void LoadBmp(Bytes input);
void WritePng(Bytes input);

// BitmapTargets.cpp
void MaskPolygon(Bytes input);
void CropAndResize(Bytes input);

// TextTargets.cpp
void ReadOptions(Bytes input);
void ReadConfiguration(Bytes input);
void ReadLoggerConfig(Bytes input);
void ReadGuid(Bytes input);

// ToolTarget.cpp
void UseTool(Bytes input);

// CompositorTarget.cpp
void HearCompositor(Bytes input);

// ServerTarget.cpp
void HearServer(Bytes input);

/// Ends the process, with a line on standard error, if something doesn't hold that always has to.
void Require(bool holds, const char* what);

/// Takes values from the beginning of an input; zeros once it is used up.
class Reader
{
public:
    explicit Reader(Bytes input) : m_input(input) {}

    [[nodiscard]] bool IsAtEnd() const { return m_input.empty(); }
    [[nodiscard]] Bytes GetRest() const { return m_input; }
    std::uint8_t TakeByte();
    /// Little-endian.
    std::uint16_t TakeWord();
    std::int32_t TakeNumber();

private:
    Bytes m_input;
};

} // namespace Orvik::Fuzz
