#ifndef VORN_SIM_CALLRECEIVER_H
#define VORN_SIM_CALLRECEIVER_H

#include <atomic>

#include <sched.h>

namespace Vorn::Sim {

/// Who is offered the process's calls of one kind, on whatever thread they are made.
///
/// Initialised at compile time: calls are made before any constructor of the executable has run,
/// see NextFunction.
template <typename Calls>
class CallReceiver
{
public:
    /// Null for nobody.
    void set(Calls *calls) { m_calls.store(calls); }
    Calls *get() const { return m_calls.load(); }

    /// Waits until no thread is in a call to a receiver that was set before. After that, nobody
    /// uses the former receiver any more.
    void awaitCallers() const
    {
        while (m_callers.load() != 0)
            ::sched_yield();
    }

    /// Keeps the receiver from being destroyed for the length of a call.
    class Use
    {
    public:
        /// @param receiver null for a call that nobody is offered
        explicit Use(CallReceiver *receiver)
            : m_receiver(receiver && receiver->m_calls.load(std::memory_order_acquire) ? receiver
                                                                                       : nullptr)
        {
            if (!m_receiver)
                return;
            // Counted before looking again, so that whoever takes the receiver away sees the count,
            // or this sees that it is gone.
            m_receiver->m_callers.fetch_add(1);
            m_calls = m_receiver->m_calls.load();
        }
        ~Use()
        {
            if (m_receiver)
                m_receiver->m_callers.fetch_sub(1);
        }
        Use(const Use &) = delete;
        Use &operator=(const Use &) = delete;

        explicit operator bool() const { return m_calls != nullptr; }
        Calls *operator->() const { return m_calls; }

    private:
        CallReceiver *const m_receiver;
        Calls *m_calls = nullptr;
    };

private:
    std::atomic<Calls *> m_calls{nullptr};
    std::atomic<int> m_callers{0};
};

} // namespace Vorn::Sim

#endif
