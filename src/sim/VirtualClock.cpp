#include "VirtualClock.h"

#include "ClockCalls.h"
#include "DispatcherRounding.h"
#include "Interposition.h"
#include "RealCalls.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QEvent>
#include <QEventLoop>
#include <QThread>

#include <atomic>
#include <ctime>
#include <optional>

#include <dlfcn.h>
#include <pthread.h>

namespace Vorn::Sim {

namespace {

using Nanoseconds = std::chrono::nanoseconds;

// Low, so that a deadline that leaks into the kernel is in the past there, not years ahead. On a
// whole millisecond, as are the times of Qt's coarse timers: from between two, no wait would end at
// these and at those of precise timers, too.
constexpr Nanoseconds monotonicStart = std::chrono::seconds(10);
// After so many polls in a row without time moving, something keeps the loop busy forever.
constexpr int busyLimit = 1'000'000;

// The start of the library that contains an address.
const void *libraryOf(const void *address)
{
    Dl_info info = {};
    return address && dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

// Whether a poll comes from an event dispatcher: Qt's dispatchers poll in Qt's library or in GLib.
bool isDispatcher(const void *caller)
{
    static const void *const qt = libraryOf(dlsym(RTLD_DEFAULT, "qVersion"));
    static const void *const glib = libraryOf(dlsym(RTLD_DEFAULT, "g_main_context_iteration"));
    const void *library = libraryOf(caller);
    return library && (library == qt || library == glib);
}

// A call of advance() or waitUntil() in progress.
struct Run
{
    Nanoseconds target;
    bool isFinished = false;
};

} // namespace

class VirtualClock::State : public ClockCalls
{
public:
    explicit State(Nanoseconds wallStart)
        : m_wallOffset(wallStart.count())
    { }

    bool get(clockid_t clock, Nanoseconds &result) override
    {
        switch (clock) {
        case CLOCK_REALTIME:
        case CLOCK_REALTIME_COARSE:
            result = wallClock();
            return true;
        case CLOCK_MONOTONIC:
        case CLOCK_MONOTONIC_COARSE:
        case CLOCK_MONOTONIC_RAW:
        case CLOCK_BOOTTIME:
            result = monotonicStart + elapsed();
            return true;
        default:
            return false;
        }
    }

    // What becomes of a poll on the clock's thread:
    //
    //   something ready, or timeout 0 ──> return at once
    //   nothing ready, and advance() or waitUntil() in progress
    //   ├── timeout before its end ─────> time jumps to the timeout: a timer is due
    //   └── later, or no timeout ───────> time jumps to its end, which ends it
    //   nothing ready, in another event loop
    //   ├── timeout ────────────────────> time jumps to the timeout: a timer is due
    //   └── no timeout ─────────────────> really wait: only another thread can end it
    bool poll(const Poll &call, int &result) override
    {
        if (!pthread_equal(pthread_self(), m_thread))
            return false;

        result = Real::ppoll(call.fds, call.count, Nanoseconds::zero(), call.mask);
        const bool isWait = call.timeout != Nanoseconds::zero();
        if (result != 0 || !isWait) {
            countBusy();
            m_wakeUps += isWait ? 1 : 0;
            return true;
        }

        result = wait(call);
        return true;
    }

    bool run(Nanoseconds duration, const std::function<bool()> &condition)
    {
        QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance();
        if (!dispatcher || !pthread_equal(pthread_self(), m_thread))
            qFatal("VirtualClock: moved without an event dispatcher, or on another thread");

        Run run = {elapsed() + duration};
        Run *const outer = m_run;
        m_run = &run;
        m_busy = 0;
        bool holds = condition && condition();
        while (!holds && !run.isFinished) {
            // A test runs outside any event loop, where what it deletes with deleteLater() would
            // never be deleted.
            if (QThread::currentThread()->loopLevel() == 0)
                QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            dispatcher->processEvents(QEventLoop::WaitForMoreEvents);
            holds = condition && condition();
        }
        m_run = outer;
        return holds;
    }

    void stepWallClock(Nanoseconds delta) { m_wallOffset += delta.count(); }

    Nanoseconds wallClock() const { return Nanoseconds(m_wallOffset.load()) + elapsed(); }

    Nanoseconds elapsed() const { return Nanoseconds(m_elapsed.load()); }

    quint64 wakeUps() const { return m_wakeUps; }

private:
    // Since virtual time only moves by these waits, every timer would be as late as Qt rounds them.
    // A dispatcher that wakes too early just polls again.
    static Nanoseconds waitOf(const Poll &call)
    {
        const Nanoseconds wait = *call.timeout;
        return wait > dispatcherRounding && isDispatcher(call.caller) ? wait - dispatcherRounding
                                                                      : wait;
    }

    int wait(const Poll &call)
    {
        const bool isRunning = m_run && !m_run->isFinished;
        if (!call.timeout && !isRunning) {
            const int result = Real::ppoll(call.fds, call.count, std::nullopt, call.mask);
            ++m_wakeUps;
            return result;
        }
        if (!call.timeout)
            return finishRun(call);
        const Nanoseconds end = elapsed() + waitOf(call);
        if (isRunning && end > m_run->target)
            return finishRun(call);
        moveTo(end);
        ++m_wakeUps;
        return 0;
    }

    void moveTo(Nanoseconds time)
    {
        m_elapsed = time.count();
        m_busy = 0;
    }

    // Ends the run at this poll, and returns the result of the poll.
    int finishRun(const Poll &call)
    {
        if (m_run->target > elapsed())
            moveTo(m_run->target);
        m_run->isFinished = true;
        // GLib's dispatcher polls again until it has dispatched something, so it must be woken; and
        // it must see that in this poll, or the wake-up would end the next run's first wait.
        QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance();
        if (!dispatcher || !dispatcher->inherits("QEventDispatcherGlib"))
            return 0;
        dispatcher->wakeUp();
        return Real::ppoll(call.fds, call.count, Nanoseconds::zero(), call.mask);
    }

    void countBusy()
    {
        if (m_run && ++m_busy > busyLimit)
            qFatal("VirtualClock: events keep coming without time moving on");
    }

    const pthread_t m_thread = pthread_self();
    std::atomic<qint64> m_elapsed{0};
    std::atomic<qint64> m_wallOffset;
    std::atomic<quint64> m_wakeUps{0};
    Run *m_run = nullptr;
    int m_busy = 0;
};

namespace {

std::atomic<bool> isAlive{false};

} // namespace

VirtualClock::VirtualClock(qint64 msecsSinceEpoch)
    : m_state(std::make_unique<State>(std::chrono::milliseconds(msecsSinceEpoch)))
{
    if (isAlive.exchange(true))
        qFatal("VirtualClock: only one may be alive at a time");
    if (const char *name = missingInterposition())
        qFatal("VirtualClock: \"%s\" of the C library is not replaced in this process; "
               "vorn::sim works in executables only, and they must export it",
               name);
    serveClocks(m_state.get());

    QElapsedTimer timer;
    timer.start();
    if (QDateTime::currentMSecsSinceEpoch() != msecsSinceEpoch || timer.nsecsElapsed() != 0)
        qFatal("VirtualClock: Qt's clocks do not use the virtual one");
}

VirtualClock::~VirtualClock()
{
    serveClocks(nullptr);
    awaitClockCallers();
    isAlive = false;
}

void VirtualClock::advance(std::chrono::milliseconds duration)
{
    m_state->run(duration, nullptr);
}

bool VirtualClock::waitUntil(const std::function<bool()> &condition,
                             std::chrono::milliseconds timeout)
{
    return m_state->run(timeout, condition);
}

void VirtualClock::settle()
{
    m_state->run(Nanoseconds::zero(), nullptr);
}

void VirtualClock::stepWallClock(std::chrono::milliseconds delta)
{
    m_state->stepWallClock(delta);
}

qint64 VirtualClock::now() const
{
    return std::chrono::floor<std::chrono::milliseconds>(m_state->wallClock()).count();
}

std::chrono::milliseconds VirtualClock::elapsed() const
{
    return std::chrono::floor<std::chrono::milliseconds>(m_state->elapsed());
}

quint64 VirtualClock::wakeUps() const
{
    return m_state->wakeUps();
}

} // namespace Vorn::Sim
