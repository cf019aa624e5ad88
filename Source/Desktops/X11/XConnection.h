#pragma once

// X11's own.

#include "Desktops/X11/X11Headers.h"

#include <optional>
#include <string>

namespace Orvik::Desktops::X11
{

/// The process's one connection to the X server, opened at the first call, closed at exit. Null if there is no server
/// or it is gone. It belongs to the main thread. An X error without an `XErrorScope` is only logged; the loss of the
/// server is logged, and the loss handler called.
[[nodiscard]] ::Display* GetXDisplay();

/// Sets what to call when the server goes away, inside of the call that notices; null for nothing. Xlib can't be called
/// again after that, not even by that call.
void SetLossHandler(void (*handler)());

/// Catches the X errors of requests that are made while it lives. X errors arrive late: `HasFailed` and the destructor
/// wait for the server if it hasn't handled all requests yet. Scopes may nest.
class XErrorScope
{
public:
    explicit XErrorScope(::Display* display);
    ~XErrorScope();
    XErrorScope(const XErrorScope&) = delete;
    XErrorScope& operator=(const XErrorScope&) = delete;

    /// Whether a request since the scope began has caused an error, or the connection is missing.
    [[nodiscard]] bool HasFailed();

    /// The last error of the scope, such as "BadAlloc (insufficient resources for operation) (B)", or that there is no
    /// connection. Call it after `HasFailed`.
    [[nodiscard]] std::string GetErrorText() const;

private:
    friend int RecordXError(::Display* display, XErrorEvent* error);

    /// Waits until the errors of all requests are known. Usually they are: every answer brings the earlier errors.
    void AwaitServer() const;

    ::Display* m_display;
    XErrorScope* m_outer;
    unsigned long m_firstRequest; ///< serial of the first one that counts
    int m_errorCode = 0;
};

/// Where a window is in its parent. All are pixels.
struct XGeometry
{
    int x = 0;
    int y = 0;
    unsigned int width = 0;
    unsigned int height = 0;
    unsigned int border = 0; ///< around the size, on each side
};

/// Empty if the window is gone. Call it within an `XErrorScope`.
[[nodiscard]] std::optional<XGeometry> GetXGeometry(::Display* display, ::Window window);

/// The text of an X error code and the code in hexadecimal in parentheses, in the form of `FormatLastError`. The code 0
/// means a missing connection.
[[nodiscard]] std::string FormatXError(int errorCode);

} // namespace Orvik::Desktops::X11
