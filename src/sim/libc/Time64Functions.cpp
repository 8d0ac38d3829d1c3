#define VORN_SIM_TIME64
#include "InterposedFunction.h"

#include "DescriptorFunctions.h"
#include "DuplicateFunctions.h"
#include "ServedClock.h"
#include "ServedStatus.h"
#include "Time64Functions.h"

#include <cstdarg>
#include <optional>

#include <bits/timesize.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/time.h>

#if __TIMESIZE == 32 && __GLIBC_PREREQ(2, 34)

// No header declares these. Their structures are those of a 64-bit time_t, as in all of this file.
VORN_SIM_INTERPOSED int __ioctl_time64(int fd, unsigned long request, ...);
VORN_SIM_INTERPOSED int __fcntl_time64(int fd, int command, ...);
VORN_SIM_INTERPOSED int __stat64_time64(const char *path, struct stat *status);
VORN_SIM_INTERPOSED int __lstat64_time64(const char *path, struct stat *status);
VORN_SIM_INTERPOSED int __fstat64_time64(int fd, struct stat *status);
VORN_SIM_INTERPOSED int __clock_gettime64(clockid_t clock, timespec *result);
VORN_SIM_INTERPOSED int __gettimeofday64(struct timeval *result, void *zone);
VORN_SIM_INTERPOSED time_t __time64(time_t *result);
VORN_SIM_INTERPOSED int __ppoll64(pollfd *fds, nfds_t count, const timespec *timeout,
                                  const sigset_t *mask);
VORN_SIM_INTERPOSED int __ppoll64_chk(pollfd *fds, nfds_t count, const timespec *timeout,
                                      const sigset_t *mask, size_t capacity);

namespace Vorn::Sim {

namespace {

NextFunction<int(int, unsigned long, ...)> nextIoctl("__ioctl_time64");
NextFunction<int(int, int, ...)> nextFcntl("__fcntl_time64");
NextFunction<int(const char *, struct stat *)> nextStat("__stat64_time64");
NextFunction<int(const char *, struct stat *)> nextLstat("__lstat64_time64");
NextFunction<int(int, struct stat *)> nextFstat("__fstat64_time64");
NextFunction<int(clockid_t, timespec *)> nextClockGettime("__clock_gettime64");
NextFunction<int(struct timeval *, void *)> nextGettimeofday("__gettimeofday64");
NextFunction<time_t(time_t *)> nextTime("__time64");
NextFunction<int(pollfd *, nfds_t, const timespec *, const sigset_t *)> nextPpoll("__ppoll64");
NextFunction<int(pollfd *, nfds_t, const timespec *, const sigset_t *, size_t)>
    nextPpollChk("__ppoll64_chk");

std::optional<std::chrono::nanoseconds> timeoutOf(const timespec *time)
{
    if (!time)
        return std::nullopt;
    return pollTimeout(time->tv_sec, time->tv_nsec);
}

} // namespace

} // namespace Vorn::Sim

using namespace Vorn::Sim;

VORN_SIM_INTERPOSED int __ioctl_time64(int fd, unsigned long request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    int result = -1;
    return serveIoctl(fd, request, argument, result) ? result : nextIoctl(fd, request, argument);
}

VORN_SIM_INTERPOSED int __fcntl_time64(int fd, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    return callFcntl(nextFcntl, fd, command, argument);
}

VORN_SIM_INTERPOSED int __stat64_time64(const char *path, struct stat *status)
{
    return statusOfPath(nextStat, path, status);
}

VORN_SIM_INTERPOSED int __lstat64_time64(const char *path, struct stat *status)
{
    return statusOfPath(nextLstat, path, status);
}

VORN_SIM_INTERPOSED int __fstat64_time64(int fd, struct stat *status)
{
    return statusOfDescriptor(nextFstat, fd, status);
}

VORN_SIM_INTERPOSED int __clock_gettime64(clockid_t clock, timespec *result)
{
    ClockReading now;
    if (!serveClock(clock, now))
        return nextClockGettime(clock, result);
    result->tv_sec = now.seconds;
    result->tv_nsec = now.nanoseconds;
    return 0;
}

VORN_SIM_INTERPOSED int __gettimeofday64(struct timeval *result, void *zone)
{
    ClockReading now;
    if (!serveClock(CLOCK_REALTIME, now))
        return nextGettimeofday(result, zone);
    result->tv_sec = now.seconds;
    result->tv_usec = now.nanoseconds / 1000;
    return 0;
}

VORN_SIM_INTERPOSED time_t __time64(time_t *result)
{
    ClockReading now;
    if (!serveClock(CLOCK_REALTIME, now))
        return nextTime(result);
    if (result)
        *result = now.seconds;
    return now.seconds;
}

VORN_SIM_INTERPOSED int __ppoll64(pollfd *fds, nfds_t count, const timespec *timeout,
                                  const sigset_t *mask)
{
    const ClockCalls::Poll call = {fds, count, timeoutOf(timeout), mask,
                                   __builtin_return_address(0)};
    int result = -1;
    return servePoll(call, result) ? result : nextPpoll(fds, count, timeout, mask);
}

VORN_SIM_INTERPOSED int __ppoll64_chk(pollfd *fds, nfds_t count, const timespec *timeout,
                                      const sigset_t *mask, size_t capacity)
{
    const ClockCalls::Poll call = {fds, count, timeoutOf(timeout), mask,
                                   __builtin_return_address(0)};
    int result = -1;
    return count <= capacity / sizeof(*fds) && servePoll(call, result)
        ? result
        : nextPpollChk(fds, count, timeout, mask, capacity);
}

namespace Vorn::Sim {

const char *missingTime64Function()
{
    // __ppoll64_chk is left out: not every C library has it, and where it has not, nobody calls it.
    return firstMissing({
        {"__ioctl_time64", reinterpret_cast<void *>(&::__ioctl_time64)},
        {"__fcntl_time64", reinterpret_cast<void *>(&::__fcntl_time64)},
        {"__stat64_time64", reinterpret_cast<void *>(&::__stat64_time64)},
        {"__lstat64_time64", reinterpret_cast<void *>(&::__lstat64_time64)},
        {"__fstat64_time64", reinterpret_cast<void *>(&::__fstat64_time64)},
        {"__clock_gettime64", reinterpret_cast<void *>(&::__clock_gettime64)},
        {"__gettimeofday64", reinterpret_cast<void *>(&::__gettimeofday64)},
        {"__time64", reinterpret_cast<void *>(&::__time64)},
        {"__ppoll64", reinterpret_cast<void *>(&::__ppoll64)},
    });
}

} // namespace Vorn::Sim

#else

const char *Vorn::Sim::missingTime64Function()
{
    return nullptr;
}

#endif
