#include "Tests/Support/AssertionTrap.h"

#include <utility>

namespace Orvik::Tests
{
namespace
{

void ThrowFailure(const System::Error::AssertionInfo& info)
{
    throw AssertionFailure{info.condition, info.message, info.location->file, info.location->line,
                           info.location->function};
}

std::vector<std::string> s_messages;

void NoteFailure(const System::Error::AssertionInfo& info)
{
    s_messages.emplace_back(info.message);
}

} // namespace

AssertionTrap::AssertionTrap() : m_previous(System::Error::SetAssertionHandler(&ThrowFailure))
{
}

AssertionTrap::~AssertionTrap()
{
    System::Error::SetAssertionHandler(m_previous);
}

AssertionList::AssertionList() : m_previous(System::Error::SetAssertionHandler(&NoteFailure))
{
    s_messages.clear();
    System::Error::SetContinueAfterAssertion(true);
}

AssertionList::~AssertionList()
{
    System::Error::SetContinueAfterAssertion(false);
    System::Error::SetAssertionHandler(m_previous);
}

std::vector<std::string> AssertionList::Take()
{
    return std::exchange(s_messages, {});
}

} // namespace Orvik::Tests
