#ifndef CPUTIME_H
#define CPUTIME_H

#include <chrono>
#include <ctime>

inline timespec clockOf(clockid_t clock)
{
    timespec result = {};
    ::clock_gettime(clock, &result);
    return result;
}

/// How long an action takes on a clock that is never virtual.
template <typename Action>
std::chrono::nanoseconds cpuTimeOf(Action action)
{
    const timespec before = clockOf(CLOCK_PROCESS_CPUTIME_ID);
    action();
    const timespec after = clockOf(CLOCK_PROCESS_CPUTIME_ID);
    return std::chrono::seconds(after.tv_sec - before.tv_sec)
        + std::chrono::nanoseconds(after.tv_nsec - before.tv_nsec);
}

#endif
