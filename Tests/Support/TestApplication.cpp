#include "Tests/Support/TestApplication.h"

namespace Orvik::Tests
{

void TestApplication::CreateDisplayCache()
{
    using System::Device::Display::DisplayCache;
    m_displaySystem =
        System::Runtime::SystemPointer<DisplayCache>(new DisplayCache, [](DisplayCache* system) { delete system; });
    if (m_displaySystem->Initialize(nullptr))
        m_displaySystem->ExchangeState(System::Runtime::ISystem::State::Initialized);
}

} // namespace Orvik::Tests
