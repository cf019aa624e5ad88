#pragma once

#include "Core/System/Runtime/CommandLine.h"

#include <cstdint>

namespace Orvik::SnipBench
{

/// The program's options, by their ids on the command line.
enum class Option : std::uint64_t
{
    OutDirectory = 1,
    OutFileType,
    OneShot,
    KeepMask,
    Delay,
    Annotate,
    File,
    ShowReturnCodes,
    ConfigFile,
    ConfigJson,
    Permission,
    Help,
};

/// Declares the twelve options in their order.
void DeclareOptions(System::Runtime::CommandLine& commandLine);

/// Milliseconds from the text of `Delay`: leading digits count, the rest is ignored. Without a digit
/// `std::invalid_argument` is thrown, beyond signed 32 bits `std::out_of_range`.
[[nodiscard]] std::int32_t ParseDelay(const std::string& text);

} // namespace Orvik::SnipBench
