#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Orvik::Tests
{

class XSession;

/// Divides the screen of an X server into monitors, through RandR 1.5; they replace its own one. `primary` is the index
/// of the primary one. Throws `std::runtime_error` if the server has no RandR 1.5.
void SetMonitors(const std::string& displayName, const std::vector<Area>& monitors, std::size_t primary);

/// A window of another program that has the keyboard focus while it lives.
class FocusedWindow
{
public:
    FocusedWindow(const std::string& displayName, const Area& area);
    ~FocusedWindow();
    FocusedWindow(const FocusedWindow&) = delete;
    FocusedWindow& operator=(const FocusedWindow&) = delete;

private:
    std::unique_ptr<XSession> m_session; ///< its windows go with it
};

} // namespace Orvik::Tests
