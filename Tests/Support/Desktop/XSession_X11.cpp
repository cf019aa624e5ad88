#include "Tests/Support/Desktop/XSession.h"

#include <stdexcept>

namespace Orvik::Tests
{

XSession::XSession(const std::string& displayName)
    : m_display(XOpenDisplay(displayName.empty() ? nullptr : displayName.c_str()))
{
    if (m_display == nullptr)
        throw std::runtime_error("No X server at " + displayName + ".");
}

XSession::~XSession()
{
    XCloseDisplay(m_display);
}

} // namespace Orvik::Tests
