#ifndef VORN_DRIVE_LOOPWATCH_H
#define VORN_DRIVE_LOOPWATCH_H

#include "ClockCalls.h"

#include <QtGlobal>

#include <atomic>
#include <chrono>

#include <pthread.h>

namespace Vorn::Drive {

/// Sees when the program's event loop has nothing left to do, and decides with whoever listens how
/// long it may sleep. With a virtual clock, that is how time moves.
///
/// It looks at the loop's own polls, which have the agent's socket among their descriptors, so that
/// nothing is added to the loop and any dispatcher will do.
class LoopWatch : public Sim::ClockCalls
{
public:
    class Listener
    {
    public:
        virtual ~Listener() = default;
        /// The loop has nothing to do.
        virtual void onIdle() = 0;
        /// The loop has looked for something to do without being idle, as one that has a timer of
        /// 0 ms never is.
        /// @param isReady whether it found a descriptor that is ready
        virtual void onPoll(bool isReady) = 0;
        /// Whether time stands still until the driver says what is next; virtual time only.
        virtual bool isTimeHeld() const = 0;
        /// When to call again, in ns from now; -1: not by itself.
        virtual qint64 limit() const = 0;
    };

    /// Takes over from the virtual clock if there is one, and asks it. To be made on the thread of
    /// the event loop; never goes.
    /// @param descriptor the agent's socket
    LoopWatch(int descriptor, Listener *listener);

    /// Leaves this process alone, which is a forked child.
    static void abandon();

    void stepWallClock(qint64 milliseconds);

    bool get(clockid_t clock, std::chrono::nanoseconds &result) override;
    bool poll(const Poll &call, int &result) override;

private:
    bool isOfLoop(const Poll &call) const;
    int pollIdle(const Poll &call);

    const int m_descriptor;
    Listener *const m_listener;
    ClockCalls *const m_virtual; ///< null in real time
    const pthread_t m_thread;
    std::atomic<qint64> m_wallOffset{0}; ///< ns; in real time
};

} // namespace Vorn::Drive

#endif
