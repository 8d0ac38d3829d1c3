#ifndef VORN_SIM_VIRTUALCLOCK_H
#define VORN_SIM_VIRTUALCLOCK_H

#include <QtGlobal>

#include <chrono>
#include <functional>
#include <memory>

namespace Vorn::Sim {

/// Makes the process's clocks virtual: they stand still until they are moved, and waiting takes no
/// time.
///
/// While one is alive, `clock_gettime` (wall clock, monotonic clocks, time since boot),
/// `gettimeofday` and `time` return virtual time, and with them `QDateTime`, `QElapsedTimer`,
/// `QTimer`, `std::chrono` and the stamps of simulated records. Qt's event dispatchers run
/// unmodified on it: where they would wait for the next timer, time jumps to that timer. A key held
/// for 10 seconds is tested in a millisecond, and with the same result each time.
///
/// Time moves within advance() and waitUntil(), and also in an event loop that is run by other
/// means (`QEventLoop::exec()`, `QSignalSpy::wait()`); with no timer running, such a loop really
/// waits for a descriptor or another thread.
///
/// Construct it before the objects whose timers are to run on it: timers that are running as the
/// clock comes or goes expire at arbitrary times.
///
/// **What else is seen**: test durations of the test framework and the stamps of log lines are
/// virtual, too. Coarse timers, Qt's default, stay within 5 % as ever, but always the same, since
/// the monotonic clock starts at 10 s each time.
///
/// **What is not virtual**: sleeping (`QThread::msleep`), waiting for another thread with a timeout
/// (`QThread::wait`, `QWaitCondition`, `std::condition_variable`: their deadlines make no sense
/// while the clock is virtual), `timerfd`, and `poll` on other threads.
///
/// **Thread**: one at a time per process, a second one is fatal. Constructed, moved and destroyed
/// on the thread whose event loop it drives; every thread reads the virtual time. The functions
/// that run events need a `QCoreApplication`.
///
/// @code
/// VirtualClock clock;
/// QTimer timer;
/// timer.start(10'000);
/// clock.advance(std::chrono::seconds(10)); // the timer has fired
/// @endcode
class VirtualClock
{
public:
    /// 2026-01-02 10:00:00 UTC, in milliseconds since the epoch.
    static constexpr qint64 DefaultStart = 1'767'348'000'000;

    /// Stops the clocks; the wall clock shows @p msecsSinceEpoch.
    explicit VirtualClock(qint64 msecsSinceEpoch = DefaultStart);

    /// Back to the real clocks.
    ~VirtualClock();
    VirtualClock(const VirtualClock &) = delete;
    VirtualClock &operator=(const VirtualClock &) = delete;

    /// Runs events for @p duration of virtual time, up to and including what is due at its very
    /// end: timers, descriptors, posted events and deferred deletions. Returns exactly then, unless
    /// a slot ran an event loop of its own for longer.
    ///
    /// Fatal when a million events come without time moving on (a periodic timer of 0 ms, a
    /// descriptor that stays readable).
    void advance(std::chrono::milliseconds duration);

    /// Runs events one after the other until @p condition holds, but no longer than @p timeout of
    /// virtual time. It is tested first and after each step, so time does not run past the event
    /// that made it true.
    /// @return whether it holds
    bool waitUntil(const std::function<bool()> &condition,
                   std::chrono::milliseconds timeout = std::chrono::seconds(60));

    /// Runs all that is ready by now, and what becomes ready by that, without moving the time.
    void settle();

    /// Sets the wall clock forward or back, as an administrator or NTP does. Timers and the
    /// monotonic clocks are not affected.
    void stepWallClock(std::chrono::milliseconds delta);

    /// The wall clock, in milliseconds since the epoch.
    qint64 now() const;

    /// How much virtual time has passed since the start, steps of the wall clock not counted.
    std::chrono::milliseconds elapsed() const;

    /// How often the event loop was woken from its sleep, by a timer or a descriptor. The end of
    /// advance() does not count, nor do events that were ready without sleeping.
    quint64 wakeUps() const;

private:
    class State;
    const std::unique_ptr<State> m_state;
};

} // namespace Vorn::Sim

#endif
