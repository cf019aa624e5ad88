#include "Tests/Support/Desktop/InputDriver.h"

#include "Tests/Support/Desktop/AnswerLimit.h"
#include "Tests/Support/Desktop/CompositorClient.h"
#include "Tests/Support/Desktop/InputDevices.h"
#include "Tests/Support/Desktop/XSession.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XTest.h>
#include <stdexcept>

namespace Orvik::Tests
{

namespace
{

/// An X server's own mouse and keyboard, by its XTEST extension.
class XTestDevices final : public InputDevices
{
public:
    /// The session outlives the object.
    explicit XTestDevices(const XSession& session) : m_session(session) {}

    void MoveTo(Position position) override
    {
        XTestFakeMotionEvent(m_session.GetDisplay(), -1, position.x, position.y, CurrentTime);
        m_session.Synchronize();
    }

    void MoveBy(Position way) override
    {
        XTestFakeRelativeMotionEvent(m_session.GetDisplay(), way.x, way.y, CurrentTime);
        m_session.Synchronize();
    }

    [[nodiscard]] Position GetPointer() const override
    {
        ::Window root = 0;
        ::Window child = 0;
        Position position;
        Position inWindow;
        unsigned mask = 0;
        XQueryPointer(m_session.GetDisplay(), m_session.GetRoot(), &root, &child, &position.x, &position.y, &inWindow.x,
                      &inWindow.y, &mask);
        return position;
    }

    void SetButton(unsigned button, bool isPressed) override
    {
        XTestFakeButtonEvent(m_session.GetDisplay(), button, isPressed ? True : False, CurrentTime);
        m_session.Synchronize();
    }

    void SetKey(unsigned code, bool isPressed) override
    {
        XTestFakeKeyEvent(m_session.GetDisplay(), code, isPressed ? True : False, CurrentTime);
        m_session.Synchronize();
    }

    [[nodiscard]] unsigned FindCode(const std::string& name) const override
    {
        return XKeysymToKeycode(m_session.GetDisplay(), XStringToKeysym(name.c_str()));
    }

private:
    const XSession& m_session;
};

} // namespace

InputDriver::InputDriver(const std::string& displayName)
    : m_session(IsCompositorName(displayName) ? nullptr : std::make_unique<XSession>(displayName)),
      m_repeatsKeys(m_session != nullptr)
{
    if (m_session != nullptr)
        m_devices = std::make_unique<XTestDevices>(*m_session);
    else
        m_devices = MakeVirtualDevices(displayName);
}

InputDriver::~InputDriver() = default;

void InputDriver::MoveTo(Position position)
{
    m_devices->MoveTo(position);
}

void InputDriver::MoveBy(Position way)
{
    m_devices->MoveBy(way);
}

void InputDriver::Nudge()
{
    const Position place = GetPointer();
    MoveTo({place.x > 0 ? place.x - 1 : place.x + 1, place.y});
    MoveTo(place);
}

void InputDriver::PressButton(unsigned button)
{
    m_devices->SetButton(button, true);
}

void InputDriver::ReleaseButton(unsigned button)
{
    m_devices->SetButton(button, false);
}

void InputDriver::Click(unsigned button)
{
    PressButton(button);
    ReleaseButton(button);
}

void InputDriver::PressKey(const std::string& name)
{
    PressKey(FindCode(name));
}

void InputDriver::ReleaseKey(const std::string& name)
{
    ReleaseKey(FindCode(name));
}

void InputDriver::TapKey(const std::string& name)
{
    TapKey(FindCode(name));
}

void InputDriver::PressKey(unsigned code)
{
    m_devices->SetKey(code, true);
}

void InputDriver::ReleaseKey(unsigned code)
{
    m_devices->SetKey(code, false);
}

void InputDriver::TapKey(unsigned code)
{
    PressKey(code);
    ReleaseKey(code);
}

void InputDriver::StopKeyRepeat()
{
    if (!m_repeatsKeys)
        return;
    XAutoRepeatOff(m_session->GetDisplay());
    m_session->Synchronize();
    m_repeatsKeys = false;
}

void InputDriver::SetKeyRepeat(unsigned delayMilliseconds, unsigned intervalMilliseconds)
{
    if (!m_repeatsKeys)
        return;
    XAutoRepeatOn(m_session->GetDisplay());
    XkbSetAutoRepeatRate(m_session->GetDisplay(), XkbUseCoreKbd, delayMilliseconds, intervalMilliseconds);
    m_session->Synchronize();
}

Position InputDriver::GetPointer() const
{
    return m_devices->GetPointer();
}

bool InputDriver::Grab()
{
    ::Display* display = m_session->GetDisplay();
    const ::Window root = m_session->GetRoot();
    const bool isTaken =
        XGrabKeyboard(display, root, True, GrabModeAsync, GrabModeAsync, CurrentTime) == GrabSuccess &&
        XGrabPointer(display, root, True, 0, GrabModeAsync, GrabModeAsync, None, None, CurrentTime) == GrabSuccess;
    if (!isTaken)
        Ungrab();
    return isTaken;
}

void InputDriver::Ungrab()
{
    XUngrabKeyboard(m_session->GetDisplay(), CurrentTime);
    XUngrabPointer(m_session->GetDisplay(), CurrentTime);
    m_session->Synchronize();
}

bool InputDriver::CanGrab(std::chrono::milliseconds limit)
{
    const AnswerLimit answerLimit(m_session->GetDisplay(), limit);
    const bool isFree = Grab();
    Ungrab();
    return isFree && !answerLimit.HasPassed();
}

unsigned InputDriver::FindCode(const std::string& name) const
{
    const unsigned code = m_devices->FindCode(name);
    if (code == 0)
        throw std::runtime_error("No key is called " + name + ".");
    return code;
}

} // namespace Orvik::Tests
