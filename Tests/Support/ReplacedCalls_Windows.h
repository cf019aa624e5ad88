#pragma once

#include "Systems/Windows/SystemCall.h"
#include "Systems/Windows/WindowsHeaders.h"

#include <utility>
#include <vector>

namespace Orvik::Tests
{

/// Puts functions of a test in the place of the system's, for as long as it lives.
class ReplacedCalls
{
public:
    ReplacedCalls() = default;
    ~ReplacedCalls() { Reset(); }
    ReplacedCalls(const ReplacedCalls&) = delete;
    ReplacedCalls& operator=(const ReplacedCalls&) = delete;

    /// What is called in the place of a function of the system.
    template <auto Function>
    [[nodiscard]] decltype(Function)& Of()
    {
        m_restorers.push_back([] { Systems::SystemCall<Function> = Function; });
        return Systems::SystemCall<Function>;
    }

    /// Gives the system its functions back.
    void Reset()
    {
        for (void (*const restore)() : std::exchange(m_restorers, {}))
            restore();
    }

private:
    std::vector<void (*)()> m_restorers;
};

} // namespace Orvik::Tests
