#include "Core/System/Text/Files.h"

namespace Orvik::System::Text
{

File OpenFile(const std::string& utf8Path, const char* mode)
{
    // "e" is the C library's own: close the file when another program takes this process over.
    const std::string modeWithoutInheritance = std::string(mode) + "e";
    return File(std::fopen(utf8Path.c_str(), modeWithoutInheritance.c_str()));
}

} // namespace Orvik::System::Text
