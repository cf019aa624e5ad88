#include "Core/System/Text/Files.h"

namespace Orvik::System::Text
{

void CloseOnDestruction::operator()(std::FILE* file) const noexcept
{
    std::fclose(file);
}

bool Close(File file)
{
    return std::fclose(file.release()) == 0;
}

} // namespace Orvik::System::Text
