#include "Tests/Support/Desktop/InputDriver.h"

#include "Tests/Support/Desktop/AnswerLimit.h"
#include "Tests/Support/Desktop/XSession.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XTest.h>
#include <stdexcept>

namespace Orvik::Tests
{

InputDriver::InputDriver(const std::string& displayName) : m_session(std::make_unique<XSession>(displayName))
{
}

InputDriver::~InputDriver() = default;

void InputDriver::MoveTo(Position position)
{
    XTestFakeMotionEvent(m_session->GetDisplay(), -1, position.x, position.y, CurrentTime);
    m_session->Synchronize();
}

void InputDriver::Nudge()
{
    const Position place = GetPointer();
    MoveTo({place.x > 0 ? place.x - 1 : place.x + 1, place.y});
    MoveTo(place);
}

void InputDriver::PressButton(unsigned button)
{
    XTestFakeButtonEvent(m_session->GetDisplay(), button, True, CurrentTime);
    m_session->Synchronize();
}

void InputDriver::ReleaseButton(unsigned button)
{
    XTestFakeButtonEvent(m_session->GetDisplay(), button, False, CurrentTime);
    m_session->Synchronize();
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
    SendKey(code, true);
}

void InputDriver::ReleaseKey(unsigned code)
{
    SendKey(code, false);
}

void InputDriver::TapKey(unsigned code)
{
    PressKey(code);
    ReleaseKey(code);
}

void InputDriver::StopKeyRepeat()
{
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
    ::Window root = 0;
    ::Window child = 0;
    Position position;
    Position inWindow;
    unsigned mask = 0;
    XQueryPointer(m_session->GetDisplay(), m_session->GetRoot(), &root, &child, &position.x, &position.y, &inWindow.x,
                  &inWindow.y, &mask);
    return position;
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
    const KeyCode code = XKeysymToKeycode(m_session->GetDisplay(), XStringToKeysym(name.c_str()));
    if (code == 0)
        throw std::runtime_error("No key is called " + name + ".");
    return code;
}

void InputDriver::SendKey(unsigned code, bool isPressed)
{
    XTestFakeKeyEvent(m_session->GetDisplay(), code, isPressed ? True : False, CurrentTime);
    m_session->Synchronize();
}

} // namespace Orvik::Tests
