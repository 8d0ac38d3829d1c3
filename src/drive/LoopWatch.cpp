#include "LoopWatch.h"

#include "DispatcherRounding.h"
#include "RealCalls.h"

#include <algorithm>
#include <chrono>
#include <optional>

#include <dlfcn.h>

namespace Vorn::Drive {

namespace {

using Nanoseconds = std::chrono::nanoseconds;

int pollNow(const Sim::ClockCalls::Poll &call)
{
    return Sim::Real::ppoll(call.fds, call.count, Nanoseconds::zero(), call.mask);
}

} // namespace

LoopWatch::LoopWatch(int descriptor, Listener *listener)
    : m_descriptor(descriptor)
    , m_listener(listener)
    , m_virtual(Sim::clockCalls())
    , m_thread(pthread_self())
{
    Sim::serveClocks(this);
}

void LoopWatch::abandon()
{
    Sim::serveClocks(nullptr);
}

void LoopWatch::stepWallClock(qint64 milliseconds)
{
    m_wallOffset += milliseconds * 1'000'000;
}

bool LoopWatch::get(clockid_t clock, Nanoseconds &result)
{
    if (m_virtual)
        return m_virtual->get(clock, result);
    const qint64 offset = m_wallOffset;
    if (offset == 0 || (clock != CLOCK_REALTIME && clock != CLOCK_REALTIME_COARSE))
        return false;
    result = Sim::Real::clock(clock) + Nanoseconds(offset);
    return true;
}

bool LoopWatch::isOfLoop(const Poll &call) const
{
    return pthread_equal(pthread_self(), m_thread)
        && std::any_of(call.fds, call.fds + call.count,
                       [this](const pollfd &entry) { return entry.fd == m_descriptor; });
}

// What becomes of a poll of the program's event loop:
//
//   something ready, or timeout 0 ──> return at once
//   nothing ready: the loop is idle, and the listener hears of it
//   ├── virtual time, held ─────────> really wait for the driver, or whatever else is ready
//   ├── virtual time ───────────────> time jumps to the next timer, but not beyond the limit
//   └── real time ──────────────────> really wait for the next timer, but not beyond the limit
bool LoopWatch::poll(const Poll &call, int &result)
{
    if (!isOfLoop(call))
        return m_virtual && m_virtual->poll(call, result);
    result = pollNow(call);
    const bool isWait = call.timeout != Nanoseconds::zero();
    if (result == 0 && isWait)
        result = pollIdle(call);
    else
        m_listener->onPoll(result != 0);
    return true;
}

int LoopWatch::pollIdle(const Poll &call)
{
    const qint64 timeout = call.timeout ? call.timeout->count() : -1;
    m_listener->onIdle();
    if (m_virtual && m_listener->isTimeHeld())
        return Sim::Real::ppoll(call.fds, call.count, std::nullopt, call.mask);
    qint64 limit = m_listener->limit();
    if (m_virtual && limit > 0)
        // The virtual clock takes it off again.
        limit += Nanoseconds(Sim::dispatcherRounding).count();
    qint64 wait = timeout;
    if (limit >= 0 && (timeout < 0 || limit < timeout))
        wait = limit;
    Poll shorter = call;
    shorter.timeout.reset();
    if (wait >= 0)
        shorter.timeout = Nanoseconds(wait);
    // It is the loop's, even if a function of a sanitizer has called in its place.
    shorter.caller = dlsym(RTLD_DEFAULT, "qVersion");
    int result = 0;
    if (!m_virtual || !m_virtual->poll(shorter, result))
        result = Sim::Real::ppoll(shorter.fds, shorter.count, shorter.timeout, shorter.mask);
    return result;
}

} // namespace Vorn::Drive
