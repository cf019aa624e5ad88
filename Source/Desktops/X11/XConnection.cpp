#include "Desktops/X11/XConnection.h"

#include "Core/System/Log/LogSite.h"
#include "Desktops/X11/ServerWatch.h"

#include <array>
#include <cstdlib>
#include <fmt/format.h>

namespace Orvik::Desktops::X11
{

int RecordXError(::Display* display, XErrorEvent* error);

namespace
{

/// What the process knows about its server. Has no destructor: windows that outlive the connection at the end of the
/// process still see that it is closed.
struct Connection
{
    ::Display* display = nullptr;
    bool isTried = false;
    XErrorScope* innermostScope = nullptr;
    void (*lossHandler)() = nullptr;
};

constinit Connection s_connection;

/// The server is gone. Xlib would end the process here; instead the run ends by itself.
int ReportLostServer(::Display* display)
{
    if (display != s_connection.display)
        return 0;
    s_connection.display = nullptr;
    System::Log::Write(System::Log::s_system, System::Log::MessageTypeID::Error,
                       "The connection to the X server is lost.");
    if (s_connection.lossHandler != nullptr)
        s_connection.lossHandler();
    return 0;
}

void StayInProcess(::Display* /*display*/, void* /*data*/)
{
}

void CloseConnection()
{
    if (s_connection.display == nullptr)
        return;
    ::Display* const display = s_connection.display;
    s_connection.display = nullptr;
    XCloseDisplay(display);
}

void OpenConnection()
{
    s_connection.isTried = true;
    XSetErrorHandler(&RecordXError);
    XSetIOErrorHandler(&ReportLostServer);
    s_connection.display = XOpenDisplay(nullptr);
    if (s_connection.display == nullptr)
        return;
    XSetIOErrorExitHandler(s_connection.display, &StayInProcess, nullptr);
    WatchServer(ConnectionNumber(s_connection.display));
    std::atexit(&CloseConnection);
}

std::string FormatErrorOf(::Display* display, int errorCode)
{
    std::array<char, 256> text = {};
    XGetErrorText(display, errorCode, text.data(), static_cast<int>(text.size()));
    return fmt::format("{} ({:X})", text.data(), errorCode);
}

} // namespace

::Display* GetXDisplay()
{
    if (!s_connection.isTried)
        OpenConnection();
    return s_connection.display;
}

void SetLossHandler(void (*handler)())
{
    s_connection.lossHandler = handler;
}

int RecordXError(::Display* display, XErrorEvent* error)
{
    // The innermost scope that existed when the request was made.
    for (XErrorScope* scope = s_connection.innermostScope; scope != nullptr; scope = scope->m_outer)
    {
        if (error->serial < scope->m_firstRequest)
            continue;
        scope->m_errorCode = error->error_code;
        return 0;
    }
    System::Log::Write(System::Log::s_system, System::Log::MessageTypeID::Warning,
                       "X error: ", FormatErrorOf(display, error->error_code), ", request ", int{error->request_code},
                       ".", int{error->minor_code}, ", resource ", error->resourceid, ".");
    return 0;
}

std::optional<XGeometry> GetXGeometry(::Display* display, ::Window window)
{
    XGeometry geometry;
    ::Window ignoredRoot = None;
    unsigned int ignoredDepth = 0;
    if (XGetGeometry(display, window, &ignoredRoot, &geometry.x, &geometry.y, &geometry.width, &geometry.height,
                     &geometry.border, &ignoredDepth) == 0)
        return std::nullopt;
    return geometry;
}

std::string FormatXError(int errorCode)
{
    ::Display* const display = GetXDisplay();
    if (errorCode == 0 || display == nullptr)
        return "No connection to the X server (0)";
    return FormatErrorOf(display, errorCode);
}

XErrorScope::XErrorScope(::Display* display)
    : m_display(display),
      m_outer(s_connection.innermostScope),
      m_firstRequest(display != nullptr ? NextRequest(display) : 0)
{
    s_connection.innermostScope = this;
}

XErrorScope::~XErrorScope()
{
    AwaitServer();
    s_connection.innermostScope = m_outer;
}

void XErrorScope::AwaitServer() const
{
    if (m_display == nullptr || m_display != s_connection.display)
        return;
    if (LastKnownRequestProcessed(m_display) + 1 != NextRequest(m_display))
        XSync(m_display, False);
}

bool XErrorScope::HasFailed()
{
    AwaitServer();
    return m_errorCode != 0 || m_display == nullptr || m_display != s_connection.display;
}

std::string XErrorScope::GetErrorText() const
{
    return FormatXError(m_errorCode);
}

} // namespace Orvik::Desktops::X11
