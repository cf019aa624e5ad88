#pragma once

// Private to the units of this folder.

#include "Tests/Support/Desktop/Picture.h"

#include <memory>
#include <string>

namespace Orvik::Tests
{

/// A mouse and a keyboard that a program works instead of a person. When an operation returns, what it is plugged into
/// has done it.
class InputDevices
{
public:
    InputDevices() = default;
    InputDevices(const InputDevices&) = delete;
    InputDevices& operator=(const InputDevices&) = delete;
    virtual ~InputDevices() = default;

    virtual void MoveTo(Position position) = 0;
    /// Moves the mouse that far, whatever the pointer makes of it.
    virtual void MoveBy(Position way) = 0;
    [[nodiscard]] virtual Position GetPointer() const = 0;
    /// Buttons and keys by X's numbers.
    virtual void SetButton(unsigned button, bool isPressed) = 0;
    virtual void SetKey(unsigned code, bool isPressed) = 0;
    /// The key with that symbol; 0 if there is none.
    [[nodiscard]] virtual unsigned FindCode(const std::string& name) const = 0;
};

/// Virtual devices of a compositor that takes such, whose only output has the scale 1. The pointer begins at the top
/// left. Throws `std::runtime_error` if it takes none.
[[nodiscard]] std::unique_ptr<InputDevices> MakeVirtualDevices(const std::string& socket);

} // namespace Orvik::Tests
