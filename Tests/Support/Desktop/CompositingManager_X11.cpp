#include "Tests/Support/Desktop/CompositingManager.h"

#include "Tests/Support/Desktop/XSession.h"

#include <cstdlib>
#include <stdexcept>

namespace Orvik::Tests
{
namespace
{

ChildOptions MakeOptions(const std::string& displayName)
{
    const char* path = std::getenv("PATH");
    return {
        "xcompmgr", {}, {"DISPLAY=" + displayName, "PATH=" + std::string(path != nullptr ? path : "/usr/bin")}, "/"};
}

/// Who puts a screen together owns this selection (EWMH).
bool IsUp(const XSession& session)
{
    const std::string name = "_NET_WM_CM_S" + std::to_string(DefaultScreen(session.GetDisplay()));
    return XGetSelectionOwner(session.GetDisplay(), XInternAtom(session.GetDisplay(), name.c_str(), False)) != None;
}

} // namespace

CompositingManager::CompositingManager(const std::string& displayName) : m_process(MakeOptions(displayName))
{
    const XSession session(displayName);
    if (!m_process.WaitUntil([&session] { return IsUp(session); }))
        throw std::runtime_error("The compositing manager did not start.");
}

} // namespace Orvik::Tests
