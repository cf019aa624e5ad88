#include "Desktops/Desktop.h"

#include "Core/System/Error/Assertion.h"

namespace Orvik::Desktops
{
namespace
{

constinit Desktop* s_desktop = nullptr;

} // namespace

Desktop& GetDesktop()
{
    ORVIK_ASSERT(s_desktop != nullptr, "No desktop was chosen.");
    return *s_desktop;
}

void SetDesktop(Desktop& desktop) noexcept
{
    s_desktop = &desktop;
}

bool HasDesktop() noexcept
{
    return s_desktop != nullptr;
}

} // namespace Orvik::Desktops
