#include "VirtualClock.h"

#include "ClockCalls.h"
#include "Interposition.h"
#include "RealCalls.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QEvent>
#include <QThread>

#include <atomic>
#include <dlfcn.h>
#include <pthread.h>

namespace Vorn::Sim {

namespace {

using Nanoseconds = std::chrono::nanoseconds;

// Low, so that a deadline that leaks into the kernel has passed there rather than never comes.
// Between two milliseconds, as nearly always in reality: Qt waits a millisecond too long for a
// timer that is due on a full one.
constexpr Nanoseconds monotonicStart = std::chrono::microseconds(10'000'500);
// So many polls in a row that time stands still: something keeps the loop busy for good.
constexpr int busyLimit = 1'000'000;

constexpr Nanoseconds toNanoseconds(const timespec &time)
{
    return std::chrono::seconds(time.tv_sec) + Nanoseconds(time.tv_nsec);
}

timespec toTimespec(Nanoseconds time)
{
    // Rounded down, also before the epoch.
    auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    if (seconds > time)
        seconds -= std::chrono::seconds(1);
    timespec result = {};
    result.tv_sec = static_cast<time_t>(seconds.count());
    result.tv_nsec = static_cast<decltype(result.tv_nsec)>((time - seconds).count());
    return result;
}

constexpr Nanoseconds qtRounding = std::chrono::milliseconds(1);

// The start of the library that an address is in.
const void *libraryOf(const void *address)
{
    Dl_info info = {};
    return address && dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

// Whether a poll is made by an event dispatcher: those of Qt are in Qt's own library or in GLib.
bool isDispatcher(const void *caller)
{
    static const void *const qt = libraryOf(dlsym(RTLD_DEFAULT, "qVersion"));
    static const void *const glib = libraryOf(dlsym(RTLD_DEFAULT, "g_main_context_iteration"));
    const void *library = libraryOf(caller);
    return library && (library == qt || library == glib);
}

// A piece of virtual time that is being run through.
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

    bool get(clockid_t clock, timespec &result) override
    {
        switch (clock) {
        case CLOCK_REALTIME:
        case CLOCK_REALTIME_COARSE:
            result = toTimespec(wallClock());
            return true;
        case CLOCK_MONOTONIC:
        case CLOCK_MONOTONIC_COARSE:
        case CLOCK_MONOTONIC_RAW:
        case CLOCK_BOOTTIME:
            result = toTimespec(monotonicStart + elapsed());
            return true;
        default:
            return false;
        }
    }

    bool poll(const Poll &call, int &result) override
    {
        if (!pthread_equal(pthread_self(), m_thread))
            return false;

        const timespec noWait = {};
        result = Real::ppoll(call.fds, call.count, &noWait, call.mask);
        const bool isWait =
            !call.timeout || call.timeout->tv_sec != 0 || call.timeout->tv_nsec != 0;
        if (result != 0 || !isWait) {
            countBusy();
            m_wakeUps += isWait ? 1 : 0;
            return true;
        }

        const bool isRunning = m_run && !m_run->isFinished;
        if (!call.timeout) {
            if (isRunning) {
                result = finishRun(call);
            } else {
                result = Real::ppoll(call.fds, call.count, nullptr, call.mask);
                ++m_wakeUps;
            }
            return true;
        }
        const Nanoseconds end = elapsed() + waitOf(call);
        if (isRunning && end > m_run->target) {
            result = finishRun(call);
        } else {
            moveTo(end);
            ++m_wakeUps;
        }
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
            // No loop runs around a test, so that what the test itself deletes later would wait
            // for one.
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
    // Qt rounds the time to the next timer up to the next whole millisecond after it, so that with
    // a clock of whole milliseconds each timer would be one too late. A dispatcher that is woken
    // too early just looks again.
    static Nanoseconds waitOf(const Poll &call)
    {
        const Nanoseconds wait = toNanoseconds(*call.timeout);
        return wait > qtRounding && isDispatcher(call.caller) ? wait - qtRounding : wait;
    }

    void moveTo(Nanoseconds time)
    {
        m_elapsed = time.count();
        m_busy = 0;
    }

    // Returns what the poll at which it ends is to return.
    int finishRun(const Poll &call)
    {
        if (m_run->target > elapsed())
            moveTo(m_run->target);
        m_run->isFinished = true;
        // GLib's dispatcher goes on waiting until it had something to dispatch; and unless it sees
        // that it was woken, the next wait would be the one that is.
        QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance();
        if (!dispatcher || !dispatcher->inherits("QEventDispatcherGlib"))
            return 0;
        dispatcher->wakeUp();
        const timespec noWait = {};
        return Real::ppoll(call.fds, call.count, &noWait, call.mask);
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
        qFatal("VirtualClock: Qt's clocks do not arrive at the virtual one");
}

VirtualClock::~VirtualClock()
{
    serveClocks(nullptr);
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
