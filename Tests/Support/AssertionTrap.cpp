#include "Tests/Support/AssertionTrap.h"

namespace Orvik::Tests
{
namespace
{

void ThrowFailure(const System::Error::AssertionInfo& info)
{
    throw AssertionFailure{info.condition, info.message, info.location->file, info.location->line,
                           info.location->function};
}

} // namespace

AssertionTrap::AssertionTrap() : m_previous(System::Error::SetAssertionHandler(&ThrowFailure))
{
}

AssertionTrap::~AssertionTrap()
{
    System::Error::SetAssertionHandler(m_previous);
}

} // namespace Orvik::Tests
