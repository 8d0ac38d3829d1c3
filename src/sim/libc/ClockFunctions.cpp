#include "InterposedFunction.h"

#include "ClockCalls.h"
#include "ClockFunctions.h"
#include "ServedClock.h"

#include <chrono>
#include <optional>

#include <poll.h>
#include <sys/time.h>

// Code built with size checks calls these; no header declares them.
VORN_SIM_INTERPOSED int __poll_chk(pollfd *fds, nfds_t count, int timeout, size_t capacity);
VORN_SIM_INTERPOSED int __ppoll_chk(pollfd *fds, nfds_t count, const timespec *timeout,
                                    const sigset_t *mask, size_t capacity);

namespace Vorn::Sim {

namespace {

NextFunction<int(pollfd *, nfds_t, int)> nextPoll("poll");
NextFunction<int(pollfd *, nfds_t, int, size_t)> nextPollChk("__poll_chk");
NextFunction<int(pollfd *, nfds_t, const timespec *, const sigset_t *)> nextPpoll("ppoll");
NextFunction<int(pollfd *, nfds_t, const timespec *, const sigset_t *, size_t)>
    nextPpollChk("__ppoll_chk");
NextFunction<int(clockid_t, timespec *)> nextClockGettime("clock_gettime");
NextFunction<int(struct timeval *, void *)> nextGettimeofday("gettimeofday");
NextFunction<time_t(time_t *)> nextTime("time");

using Timeout = std::optional<std::chrono::nanoseconds>;

Timeout timeoutOf(int milliseconds)
{
    return milliseconds < 0 ? Timeout() : std::chrono::milliseconds(milliseconds);
}

Timeout timeoutOf(const timespec *time)
{
    return time ? pollTimeout(time->tv_sec, time->tv_nsec) : Timeout();
}

} // namespace

} // namespace Vorn::Sim

using namespace Vorn::Sim;

// The virtual clock tells the event dispatchers' waits from others by the address that the call
// returns to, so each function takes its own.
VORN_SIM_INTERPOSED int poll(pollfd *fds, nfds_t count, int timeout)
{
    const ClockCalls::Poll call = {fds, count, timeoutOf(timeout), nullptr,
                                   __builtin_return_address(0)};
    int result = -1;
    return servePoll(call, result) ? result : nextPoll(fds, count, timeout);
}

VORN_SIM_INTERPOSED int __poll_chk(pollfd *fds, nfds_t count, int timeout, size_t capacity)
{
    const ClockCalls::Poll call = {fds, count, timeoutOf(timeout), nullptr,
                                   __builtin_return_address(0)};
    int result = -1;
    // The C library ends the process for more entries than the array has.
    return count <= capacity / sizeof(*fds) && servePoll(call, result)
        ? result
        : nextPollChk(fds, count, timeout, capacity);
}

VORN_SIM_INTERPOSED int ppoll(pollfd *fds, nfds_t count, const timespec *timeout,
                              const sigset_t *mask)
{
    const ClockCalls::Poll call = {fds, count, timeoutOf(timeout), mask,
                                   __builtin_return_address(0)};
    int result = -1;
    return servePoll(call, result) ? result : nextPpoll(fds, count, timeout, mask);
}

VORN_SIM_INTERPOSED int __ppoll_chk(pollfd *fds, nfds_t count, const timespec *timeout,
                                    const sigset_t *mask, size_t capacity)
{
    const ClockCalls::Poll call = {fds, count, timeoutOf(timeout), mask,
                                   __builtin_return_address(0)};
    int result = -1;
    return count <= capacity / sizeof(*fds) && servePoll(call, result)
        ? result
        : nextPpollChk(fds, count, timeout, mask, capacity);
}

VORN_SIM_INTERPOSED int clock_gettime(clockid_t clock, timespec *result) noexcept
{
    ClockReading now;
    if (!serveClock(clock, now))
        return nextClockGettime(clock, result);
    result->tv_sec = static_cast<time_t>(now.seconds);
    result->tv_nsec = now.nanoseconds;
    return 0;
}

VORN_SIM_INTERPOSED int gettimeofday(struct timeval *result, void *zone) noexcept
{
    ClockReading now;
    if (!serveClock(CLOCK_REALTIME, now))
        return nextGettimeofday(result, zone);
    *result = {static_cast<time_t>(now.seconds), now.nanoseconds / 1000};
    return 0;
}

VORN_SIM_INTERPOSED time_t time(time_t *result) noexcept
{
    ClockReading now;
    if (!serveClock(CLOCK_REALTIME, now))
        return nextTime(result);
    const auto seconds = static_cast<time_t>(now.seconds);
    if (result)
        *result = seconds;
    return seconds;
}

namespace Vorn::Sim {

const char *missingClockFunction()
{
    return firstMissing({
        {"poll", reinterpret_cast<void *>(&::poll)},
        {"__poll_chk", reinterpret_cast<void *>(&::__poll_chk)},
        {"ppoll", reinterpret_cast<void *>(&::ppoll)},
        {"__ppoll_chk", reinterpret_cast<void *>(&::__ppoll_chk)},
        {"clock_gettime", reinterpret_cast<void *>(&::clock_gettime)},
        {"gettimeofday", reinterpret_cast<void *>(&::gettimeofday)},
        {"time", reinterpret_cast<void *>(&::time)},
    });
}

} // namespace Vorn::Sim
