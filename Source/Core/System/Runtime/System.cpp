#include "Core/System/Runtime/System.h"

#include "Core/System/Runtime/CurrentThread.h"
#include "Core/System/Time/MonotonicClock.h"

#include <algorithm>
#include <chrono>

namespace Orvik::System::Runtime
{
namespace
{

/// The calling thread. An unknown thread is different from "no thread": it owns no System, not even one that never got
/// a thread.
const Threads::Thread* GetCallingThread()
{
    static const char s_unknownThread = 0;
    const Threads::Thread* const thread = FindCurrentThread();
    return thread != nullptr ? thread : reinterpret_cast<const Threads::Thread*>(&s_unknownThread);
}

} // namespace

void SystemLifecycle::ShutdownSignal::Raise() noexcept
{
    if (m_guard.exchange(1) == 0)
        m_semaphore.release();
}

void SystemLifecycle::ShutdownSignal::WaitFor(std::int64_t nanoseconds)
{
    // The library yields the processor even for a wait of 0, which takes long on a busy machine.
    if (nanoseconds <= 0)
        return;
    // The next round reads the state anyway, so it doesn't matter which of the two ended the wait.
    (void)m_semaphore.try_acquire_for(std::chrono::nanoseconds(nanoseconds));
}

SystemLifecycle::SystemLifecycle() : m_shutdownSignal(std::make_shared<ShutdownSignal>())
{
}

bool SystemLifecycle::ToleratesInitializationFailure() const
{
    return false;
}

void SystemLifecycle::OnStarted()
{
}

ISystem::State SystemLifecycle::GetState() const
{
    return m_state.load();
}

void SystemLifecycle::Update()
{
    ORVIK_ASSERT(false, "Illegal function call.");
}

void SystemLifecycle::OnEvent(Application& sender, const SystemEvent& event)
{
    if (event.m_eventTypeID != ShutdownEvent::TypeID_V)
    {
        OnUnhandledEvent(sender, SystemEventBaseTypeID, event);
    }
    else
    {
        // Without a loop, no other thread ends the System.
        if (m_state.exchange(State::Shutdown_Requested) == State::Initialized)
            m_state.store(State::Shutdown);
        m_shutdownSignal->Raise();
    }
    OnEventHandled(sender, SystemEventBaseTypeID, event);
}

void SystemLifecycle::OnUnhandledEvent(Application& /*sender*/, std::uint32_t /*typeId*/, const SystemEvent& /*event*/)
{
}

bool SystemLifecycle::OnPreUpdateLoop()
{
    return true;
}

bool SystemLifecycle::OnPostUpdateLoop()
{
    return true;
}

void SystemLifecycle::OnShutdown()
{
    ORVIK_ASSERT(false, "Illegal function call.");
}

void SystemLifecycle::OnEventHandled(Application& /*sender*/, std::uint32_t /*typeId*/, const SystemEvent& /*event*/)
{
}

void SystemLifecycle::PreUpdateLoop()
{
    const Threads::Thread* const updateThread = GetCallingThread();
    const Threads::Thread* const expectedThread = m_thread;
    ORVIK_ASSERT(updateThread == expectedThread, "Function must be called from owning thread only.");
    const State systemState = m_state.load();
    ORVIK_ASSERT(systemState == State::Initialized, "Pipline must be in initialized state'.");
    const State nextState = OnPreUpdateLoop() ? State::Execution : State::Execution_Paused;
    State expectedState = State::Initialized;
    const bool systemStateChanged = m_state.compare_exchange_strong(expectedState, nextState);
    ORVIK_ASSERT(systemStateChanged, "Can't change system state due to an unexpected current state.");
}

void SystemLifecycle::UpdateLoop()
{
    const Threads::Thread* const updateThread = GetCallingThread();
    const Threads::Thread* const expectedThread = m_thread;
    ORVIK_ASSERT(updateThread == expectedThread, "Function must be called from owning thread only.");
    const State systemState = m_state.load();
    ORVIK_ASSERT(systemState == State::Execution || systemState == State::Execution_Paused,
                 "Pipline must be in 'State::Execution' or 'State::Execution_Paused' state'.");
    while (true)
    {
        switch (m_state.load())
        {
        case State::Execution:
            RunUpdateRound();
            continue;
        case State::Execution_Paused:
            m_shutdownSignal->WaitFor(m_pausePeriod);
            continue;
        case State::Shutdown_Requested:
            m_state.store(State::Shutdown_Pending);
            OnShutdown();
            return;
        case State::Shutdown_Pending:
            ORVIK_ASSERT(false, "Illegal switch case.");
            return;
        case State::Undefined:
        case State::Initialized:
        case State::Shutdown:
            ORVIK_ASSERT(false, "Illegal switch case.");
            continue;
        }
        ORVIK_ASSERT(false, "Implementation of case directive is missing.");
    }
}

void SystemLifecycle::RunUpdateRound()
{
    const std::int64_t begin = Time::GetMonotonicNanoseconds();
    Update();
    const std::int64_t elapsed = Time::GetMonotonicNanoseconds() - begin;
    m_shutdownSignal->WaitFor(m_updatePeriod - std::min(elapsed, m_updatePeriod));
}

void SystemLifecycle::PostUpdateLoop()
{
    const Threads::Thread* const updateThread = GetCallingThread();
    const Threads::Thread* const expectedThread = m_thread;
    ORVIK_ASSERT(updateThread == expectedThread, "Function must be called from owning thread only.");
    const State systemState = m_state.load();
    ORVIK_ASSERT(systemState == State::Shutdown_Pending,
                 "Pipline must be in 'State::Shutdown' or 'State::Execution_Paused' state'.");
    (void)OnPostUpdateLoop();
    State expectedState = State::Shutdown_Pending;
    const bool systemStateChanged = m_state.compare_exchange_strong(expectedState, State::Shutdown);
    ORVIK_ASSERT(systemStateChanged, "Can't change system state due to an unexpected current state.");
}

void SystemLifecycle::Shutdown()
{
    const State expectedState = State::Shutdown_Requested;
    const State previousState = m_state.exchange(State::Shutdown_Pending);
    if (previousState == expectedState)
    {
        OnShutdown();
        return;
    }
    ORVIK_ASSERT(previousState == expectedState, "Override of an unexpected system state.");
}

void SystemLifecycle::SetThread(Threads::Thread* thread)
{
    ORVIK_ASSERT(m_thread == nullptr, "Thread shall be set once only.");
    m_thread = thread;
    ORVIK_ASSERT(m_thread != nullptr, "Thread must be non-null.");
}

ISystem::State SystemLifecycle::ExchangeState(State state) noexcept
{
    return m_state.exchange(state);
}

} // namespace Orvik::System::Runtime
