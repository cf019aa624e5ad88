#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace Orvik::System::Text
{

struct CloseOnDestruction
{
    void operator()(std::FILE* file) const noexcept;
};

/// An open file of the C library, closed with the object. Whoever wrote to it ends with `Close` instead, which tells
/// whether the bytes arrived.
using File = std::unique_ptr<std::FILE, CloseOnDestruction>;

/// Opens a file. `utf8Path` is UTF-8 on every platform and `mode` is that of `fopen`. Null if it can't be opened; the
/// last system error then says why. Programs that this one starts don't inherit the file.
[[nodiscard]] File OpenFile(const std::string& utf8Path, const char* mode);

/// Closes a file. False if not all that was written to it reached the system, as on a full disk.
[[nodiscard]] bool Close(File file);

} // namespace Orvik::System::Text
