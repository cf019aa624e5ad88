#include "Core/System/Text/Files.h"

#include "Core/System/Text/Unicode.h"

#include <cwchar>

namespace Orvik::System::Text
{

File OpenFile(const std::string& utf8Path, const char* mode)
{
    // "N" is the C library's own: programs that this one starts don't get the file.
    const std::string modeWithoutInheritance = std::string(mode) + "N";
    return File(_wfopen(ToWide(utf8Path).c_str(), ToWide(modeWithoutInheritance).c_str()));
}

} // namespace Orvik::System::Text
