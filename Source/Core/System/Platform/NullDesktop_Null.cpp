#include "Core/System/Platform/NullDesktop.h"

namespace Orvik::System::Platform
{

NullDesktop& NullDesktop::GetInstance()
{
    static NullDesktop s_instance;
    return s_instance;
}

} // namespace Orvik::System::Platform
