#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <chrono>
#include <memory>
#include <string>

namespace Orvik::Tests
{

class InputDevices;
class XSession;

/// Operates the mouse and the keyboard of an X server through its XTEST extension, or virtual ones of a compositor.
/// Positions are screen pixels. When an operation returns, the server has done it; a program reacts later.
class InputDriver
{
public:
    /// An empty name means the display that `DISPLAY` names; the path of a socket is a compositor's.
    explicit InputDriver(const std::string& displayName);
    ~InputDriver();
    InputDriver(const InputDriver&) = delete;
    InputDriver& operator=(const InputDriver&) = delete;

    void MoveTo(Position position);
    /// Moves the pointer by a pixel and back. Some compositors (GNOME, sway since 1.10) say that the pointer is on a
    /// new overlay only after it has moved.
    void Nudge();
    /// Moves the mouse on that far; the pointer stops at the screen's edges.
    void MoveBy(Position way);
    /// Buttons by X's numbers: 1 left, 2 middle, 3 right, 4 and 5 the wheel.
    void PressButton(unsigned button);
    void ReleaseButton(unsigned button);
    void Click(unsigned button);

    /// Keys by the name of their keysym, such as "space" or "Escape".
    void PressKey(const std::string& name);
    void ReleaseKey(const std::string& name);
    void TapKey(const std::string& name);
    /// Keys by the server's key codes, whatever the layout maps them to.
    void PressKey(unsigned code);
    void ReleaseKey(unsigned code);
    void TapKey(unsigned code);
    /// Held keys repeat no more, whatever `SetKeyRepeat` says from now on: a compositor repeats them itself, and takes
    /// a repeat of the server's for a release and a press.
    void StopKeyRepeat();
    /// Sets how a held key repeats.
    void SetKeyRepeat(unsigned delayMilliseconds, unsigned intervalMilliseconds);

    [[nodiscard]] Position GetPointer() const;

    // Of X servers alone.
    /// Grabs keyboard and pointer, as another program would. False if one of them is already grabbed; neither is held
    /// then.
    bool Grab();
    void Ungrab();
    /// Whether keyboard and pointer are free. Also false if the server doesn't answer within the limit, for example
    /// because another program holds it; the object can't be used any more then.
    [[nodiscard]] bool CanGrab(std::chrono::milliseconds limit = std::chrono::seconds(30));

protected:
    [[nodiscard]] const XSession& GetSession() const { return *m_session; }

private:
    [[nodiscard]] unsigned FindCode(const std::string& name) const;

    std::unique_ptr<XSession> m_session; ///< null for a compositor
    std::unique_ptr<InputDevices> m_devices;
    bool m_repeatsKeys; ///< held keys repeat; a compositor's clients do that themselves
};

} // namespace Orvik::Tests
