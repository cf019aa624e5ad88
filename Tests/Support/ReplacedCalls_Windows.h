#pragma once

#include "Systems/Windows/SystemCall.h"
#include "Systems/Windows/WindowsHeaders.h"

#include <utility>
#include <vector>

namespace Orvik::Tests
{

/// Replaces functions of the system by functions of a test while it lives.
class ReplacedCalls
{
public:
    ReplacedCalls() = default;
    ~ReplacedCalls() { Reset(); }
    ReplacedCalls(const ReplacedCalls&) = delete;
    ReplacedCalls& operator=(const ReplacedCalls&) = delete;

    /// The function that is called instead of a function of the system.
    template <auto Function>
    [[nodiscard]] decltype(Function)& Of()
    {
        m_restorers.push_back([] { Systems::SystemCall<Function> = Function; });
        return Systems::SystemCall<Function>;
    }

    /// Restores the system's functions.
    void Reset()
    {
        for (void (*const restore)() : std::exchange(m_restorers, {}))
            restore();
    }

private:
    std::vector<void (*)()> m_restorers;
};

} // namespace Orvik::Tests
