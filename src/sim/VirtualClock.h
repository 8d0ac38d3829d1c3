#ifndef VORN_SIM_VIRTUALCLOCK_H
#define VORN_SIM_VIRTUALCLOCK_H

#include <QtGlobal>

#include <chrono>
#include <functional>
#include <memory>

namespace Vorn::Sim {

/// @file
/// Virtual time for the tests of a product.

/// Makes the process's clocks virtual: they stand still until they are moved, and waiting takes no
/// time.
///
/// While it exists, `clock_gettime` (wall clock, monotonic clocks, time since boot), `gettimeofday`
/// and `time` return virtual time, and so do `QDateTime`, `QElapsedTimer`, `QTimer`, `std::chrono`
/// and the stamps of simulated records. Qt's event dispatchers run on it unmodified: instead of
/// waiting for the next timer, time jumps to it. Testing a key that is held for 10 seconds takes a
/// millisecond, with the same result each time.
///
/// Time moves in advance() and waitUntil(), and also in an event loop that is run by other means
/// (`QEventLoop::exec()`, `QSignalSpy::wait()`). If no timer is running, such a loop really waits
/// for a descriptor or another thread.
///
/// Construct it before the objects whose timers it is to drive: timers that are running when the
/// clock is constructed or destroyed expire at arbitrary times.
///
/// **Side effects**: the durations that the test framework reports and the stamps of log lines are
/// virtual, too. Coarse timers, Qt's default, are within 5 % as usual, but always expire at the
/// same times, because the monotonic clock always starts at 10 s.
///
/// **Not virtual**: sleeping (`QThread::msleep`), waiting for another thread with a timeout
/// (`QThread::wait`, `QWaitCondition`, `std::condition_variable`: their deadlines are meaningless
/// while the clock is virtual), `timerfd`, and `poll` on other threads.
///
/// **Thread**: only one may exist per process; a second one is fatal. Construct, move and destroy
/// it on the thread whose event loop it drives; every thread reads the virtual time. The functions
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

    /// Stops the clocks.
    /// @param msecsSinceEpoch what the wall clock shows
    explicit VirtualClock(qint64 msecsSinceEpoch = DefaultStart);

    /// Returns to the real clocks.
    ~VirtualClock();
    VirtualClock(const VirtualClock &) = delete;
    VirtualClock &operator=(const VirtualClock &) = delete;

    /// Runs events for @p duration of virtual time, including what is due at its very end: timers,
    /// descriptors, posted events and deferred deletions. Returns at that instant, unless a slot
    /// ran its own event loop for longer.
    ///
    /// Fatal if a million events occur while time stands still, as with a periodic timer of 0 ms or
    /// a descriptor that stays readable.
    /// @param duration not negative
    void advance(std::chrono::milliseconds duration);

    /// Runs events one by one until a condition holds. It is tested at the start and after each
    /// event, so time does not move past the event that made it true.
    /// @param condition what is waited for
    /// @param timeout how much virtual time may pass
    /// @return whether it holds
    bool waitUntil(const std::function<bool()> &condition,
                   std::chrono::milliseconds timeout = std::chrono::seconds(60));

    /// Runs all events that are ready, and those that they cause, without moving time.
    void settle();

    /// Sets the wall clock forward or back, as an administrator or NTP would. Does not affect
    /// timers and the monotonic clocks.
    /// @param delta negative to set it back
    void stepWallClock(std::chrono::milliseconds delta);

    /// @return the wall clock, in milliseconds since the epoch
    qint64 now() const;

    /// How much virtual time has passed since the start.
    /// @return not counting steps of the wall clock
    std::chrono::milliseconds elapsed() const;

    /// How often a timer or a descriptor woke the event loop from its sleep. The end of advance()
    /// does not count, and neither do events that were ready without sleeping.
    /// @return since the start
    quint64 wakeUps() const;

private:
    class State;
    const std::unique_ptr<State> m_state;
};

} // namespace Vorn::Sim

#endif
