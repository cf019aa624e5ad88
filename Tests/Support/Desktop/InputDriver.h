#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <chrono>
#include <memory>
#include <string>

namespace Orvik::Tests
{

class XSession;

/// Works the mouse and the keyboard of an X server through its XTEST extension. Positions are screen pixels. When an
/// operation returns, the server has done it; what a program makes of it comes later.
class InputDriver
{
public:
    explicit InputDriver(const std::string& displayName);
    ~InputDriver();
    InputDriver(const InputDriver&) = delete;
    InputDriver& operator=(const InputDriver&) = delete;

    void MoveTo(Position position);
    /// Buttons as X counts them: 1 left, 2 middle, 3 right, 4 and 5 the wheel.
    void PressButton(unsigned button);
    void ReleaseButton(unsigned button);
    void Click(unsigned button);

    /// Keys by their keysym's name, such as "space" or "Escape".
    void PressKey(const std::string& name);
    void ReleaseKey(const std::string& name);
    void TapKey(const std::string& name);
    /// Held keys repeat no more, whatever `SetKeyRepeat` says from now on: a compositor repeats them itself, and takes
    /// a repeat of the server's for a release and a press.
    void StopKeyRepeat();
    /// How a held key repeats.
    void SetKeyRepeat(unsigned delayMilliseconds, unsigned intervalMilliseconds);

    [[nodiscard]] Position GetPointer() const;

    /// Takes keyboard and pointer as another program would. False if one of them is already taken; neither is held
    /// then.
    bool Grab();
    void Ungrab();
    /// Whether keyboard and pointer are free. A server that doesn't answer within the limit, one that another program
    /// holds for instance, counts as one where they aren't; the object is of no use any more then.
    [[nodiscard]] bool CanGrab(std::chrono::milliseconds limit = std::chrono::seconds(30));

private:
    void SendKey(const std::string& name, bool isPressed);

    std::unique_ptr<XSession> m_session;
    bool m_repeatsKeys = true;
};

} // namespace Orvik::Tests
